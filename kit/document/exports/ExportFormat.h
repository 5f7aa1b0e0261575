/// The formats of other viewers: each registers itself, one source a format.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "document/DocumentReader.h"
#include "document/OutputFile.h"

namespace zelkit {

/// Takes documents, one after the other, and writes them in a format. What streams is written as it comes.
class Exporter : public DocumentVisitor {
 public:
  /// Reads a document and takes its rows; a format that copies the document token by token reads in its own
  /// way.
  virtual ReadOutcome read(ByteSource& source) { return readDocument(source, *this); }

  /// A document begins; keys of the one before mean nothing in it. `name` is for titles.
  virtual void documentStart(const std::string& /*name*/) {}
  virtual void documentEnd() {}

  /// All documents have been read: writes what is left.
  virtual void finish() = 0;
};

/// One format. An object with static storage registers itself on construction.
class ExportFormat {
 public:
  using Maker = std::unique_ptr<Exporter> (*)(OutputFile& output);

  struct Takes {
    bool profile = false;
    bool timechart = false;
    /// Whether one file can hold more than one document.
    bool several = false;
  };

  ExportFormat(const char* name, const char* description, Takes takes, Maker maker);

  const std::string& name() const { return _name; }
  const std::string& description() const { return _description; }
  bool takes(DocumentKind kind) const {
    return kind == DocumentKind::kProfile ? _takes.profile : _takes.timechart;
  }
  bool takesSeveral() const { return _takes.several; }
  std::unique_ptr<Exporter> makeExporter(OutputFile& output) const { return _maker(output); }

  /// Returns all formats in the order of their names.
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
