/// A compact form of documents, embedded in the viewer's page.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "document/DocumentVisitor.h"
#include "document/StackTree.h"
#include "document/exports/JsonOutput.h"

namespace zelkit {

/// Writes a document without its descriptions of columns, and with the samples of a profile in blocks that
/// contain each thread, address and back-trace once. For the format see docs/documents-in-the-page.md.
class PackedDocument : public DocumentVisitor {
 public:
  explicit PackedDocument(ByteSink& output) : _json(output) {}

  void description(std::string_view name, std::string_view value) override;
  void process(const ProcessRow& row) override;
  void library(const LibraryRow& row) override;
  void file(const FileRow& row) override;
  void function(const FunctionRow& row) override;
  void sample(const SampleRow& row) override;
  void seriesStart(const SeriesHead& head) override;
  void point(double time, double value) override;
  void event(const SeriesEvent& event) override;
  void seriesEnd() override;

  /// To be called after the document was read.
  void finish();

 private:
  using Numbers = std::vector<std::uint64_t>;

  /// Closes the current section and opens the named one; "Description" is an object, the others have rows.
  void open(const char* section);
  void close();

  std::uint64_t threadOf(const SampleRow& row);
  std::uint64_t siteOf(const SampleRow& row);
  std::uint64_t traceOf(const SampleRow& row);
  void writeBlock();
  void writeNewNodes(const StackTree& tree, StackTree::Node& written);
  template <typename Column>
  void writeColumn(Column& column);

  JsonOutput _json;
  std::string _section;

  std::map<std::pair<std::uint32_t, std::uint32_t>, std::uint64_t> _threads;
  StackTree _sites;
  StackTree _traces;
  StackTree::Node _writtenSites = 1;
  StackTree::Node _writtenTraces = 1;
  std::vector<std::uint32_t> _frames;
  std::int64_t _latestTime = 0;

  /// The block under construction.
  Numbers _newThreads;
  std::vector<std::int64_t> _timeSteps;
  Numbers _cores;
  Numbers _threadColumn;
  Numbers _siteColumn;
  Numbers _traceColumn;
};

}  // namespace zelkit
