/// The formats of other viewers, one source file per format; each registers itself.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "document/DocumentReader.h"
#include "document/OutputFile.h"

namespace zelkit {

/// Reads documents, one after the other, and writes them in a format, as a stream if the format allows.
class Exporter {
 public:
  virtual ~Exporter() = default;

  /// Reads a document and takes its rows.
  virtual ReadOutcome read(ByteSource& source) = 0;

  /// A document starts; keys are only valid within one document. `name` is for titles.
  virtual void documentStart(const std::string& /*name*/) {}
  virtual void documentEnd() {}

  /// Called after all documents were read; writes the rest.
  virtual void finish() = 0;
};

/// One format. An object with static storage registers itself on construction.
class ExportFormat {
 public:
  using Maker = std::unique_ptr<Exporter> (*)(OutputFile& output);

  struct Takes {
    bool profile = false;
    bool timechart = false;
    /// Whether one file can contain several documents.
    bool several = false;
  };

  ExportFormat(const char* name, const char* description, Takes takes, Maker maker);

  const std::string& name() const { return _name; }
  const std::string& description() const { return _description; }
  /// Returns whether the format can represent documents of that kind.
  bool takes(DocumentKind kind) const {
    return kind == DocumentKind::kProfile ? _takes.profile : _takes.timechart;
  }
  bool takesSeveral() const { return _takes.several; }
  /// Returns a new exporter, which writes to `output`.
  std::unique_ptr<Exporter> makeExporter(OutputFile& output) const { return _maker(output); }

  /// Returns all formats, sorted by name.
  static std::vector<const ExportFormat*> all();
  /// Returns null if there is no format of that name.
  static const ExportFormat* find(const std::string& name);

 private:
  std::string _name;
  std::string _description;
  Takes _takes;
  Maker _maker;
};

}  // namespace zelkit
