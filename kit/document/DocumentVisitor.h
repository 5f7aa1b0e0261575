/// The contents of documents, row by row. For the formats see docs/profile-document.md and
/// docs/timechart-document.md.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace zelkit {

struct ProcessRow {
  std::uint32_t key = 0;
  std::uint32_t pid = 0;
  std::uint32_t tid = 0;
  std::string_view name;
};

struct LibraryRow {
  std::uint32_t key = 0;
  std::uint32_t pidKey = 0;
  std::string_view name;
  std::uint64_t start = 0;
  std::uint64_t size = 0;
};

/// A function of a source file, by its key.
struct SourceLine {
  std::uint32_t functionKey = 0;
  std::uint32_t line = 0;
};

struct FileRow {
  std::uint32_t key = 0;
  std::string_view name;
  std::span<const SourceLine> functions;
};

struct FunctionRow {
  std::uint32_t key = 0;
  /// Without the line break that ends the first name of a list.
  std::string_view name;
  std::uint64_t start = 0;
  std::uint64_t size = 0;
  std::span<const std::uint32_t> libraryKeys;
};

/// One entry of a back-trace; the key names a function, or a library where no function was found.
struct TraceEntry {
  std::uint64_t address = 0;
  std::uint32_t key = 0;
};

struct SampleRow {
  std::uint32_t key = 0;
  std::uint64_t ip = 0;
  std::uint32_t mapKey = 0;
  /// Seconds on the document's scale.
  double time = 0.0;
  std::uint32_t cpu = 0;
  std::uint32_t pidKey = 0;
  std::uint32_t tid = 0;
  /// Innermost first.
  std::span<const TraceEntry> trace;
};

/// The head of a series in a timechart. Members that the entry lacks are empty.
struct SeriesHead {
  std::string id;
  std::string name;
  std::string treeId;
  std::string type;
  std::string chartClass;
  std::string tip;
  std::string colourOnWhite;
  std::string colourOnBlack;
  bool shown = false;
};

/// A marker of a series of type "events": time in seconds, and texts.
struct SeriesEvent {
  double time = 0.0;
  std::int64_t code = 0;
  std::string_view name;
  std::string_view arguments;
};

/// Receives a document in the order of its rows. Texts and spans are valid during the call only.
class DocumentVisitor {
 public:
  virtual ~DocumentVisitor() = default;

  /// A member of "Description"; numbers are passed as text.
  virtual void description(std::string_view /*name*/, std::string_view /*value*/) {}
  virtual void process(const ProcessRow& /*row*/) {}
  virtual void library(const LibraryRow& /*row*/) {}
  virtual void file(const FileRow& /*row*/) {}
  virtual void function(const FunctionRow& /*row*/) {}
  virtual void sample(const SampleRow& /*row*/) {}

  /// A series starts; its points or events follow, then seriesEnd.
  virtual void seriesStart(const SeriesHead& /*head*/) {}
  virtual void point(double /*time*/, double /*value*/) {}
  virtual void event(const SeriesEvent& /*event*/) {}
  virtual void seriesEnd() {}
};

}  // namespace zelkit
