// Functions as a table of tab-separated values: for spreadsheets and awk.

#include <algorithm>

#include "document/ProfileTables.h"
#include "document/StackTree.h"
#include "document/exports/ExportFormat.h"
#include "document/exports/TsvCell.h"

namespace zelkit {

namespace {

class Tsv : public Exporter, private ProfileTables {
 public:
  explicit Tsv(OutputFile& output) : _output(output) {
    _output.write("self\ttotal\tfunction\tlibrary\tfile\tline\n");
  }

  ReadOutcome read(ByteSource& source) override { return readDocument(source, *this); }

  void sample(const SampleRow& row) override {
    _frames.clear();
    forEachFrame(row, [&](std::uint32_t key) { _frames.push_back(key); });
    _tree.count(_tree.path(StackTree::kRoot, _frames));
  }

  void documentEnd() override {
    const std::map<std::uint32_t, Count> counts = countedFrames();
    std::vector<std::pair<std::uint32_t, Count>> rows(counts.begin(), counts.end());
    std::stable_sort(rows.begin(), rows.end(), [](const auto& left, const auto& right) {
      return std::pair(left.second.self, left.second.total) >
             std::pair(right.second.self, right.second.total);
    });
    for (const auto& [key, count] : rows) writeRow(key, count);
    _tree = {};
    ProfileTables::clear();
  }

  void finish() override {}

 private:
  /// Samples in the function itself, and the total with those in its callees; a recursive call counts once.
  struct Count {
    std::uint64_t self = 0;
    std::uint64_t total = 0;
  };

  std::map<std::uint32_t, Count> countedFrames() const {
    std::map<std::uint32_t, Count> counts;
    std::vector<std::uint32_t> keys;
    for (StackTree::Node node = 1; node < _tree.size(); ++node) {
      const std::uint32_t samples = _tree.self(node);
      if (samples == 0) continue;
      keys.clear();
      for (StackTree::Node at = node; at != StackTree::kRoot; at = _tree.parent(at))
        keys.push_back(static_cast<std::uint32_t>(_tree.label(at)));
      counts[keys.front()].self += samples;
      std::sort(keys.begin(), keys.end());
      keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
      for (const std::uint32_t key : keys) counts[key].total += samples;
    }
    return counts;
  }

  void writeRow(std::uint32_t key, const Count& count) {
    const Function* function = findFunction(key);
    const Library* library = libraryOf(key);
    const bool hasFile = function != nullptr && !function->file.empty();
    _output.write(std::to_string(count.self) + '\t' + std::to_string(count.total) + '\t' +
                  tsvCell(frameName(key)) + '\t' + tsvCell(library == nullptr ? "" : library->name) + '\t' +
                  (hasFile ? tsvCell(function->file) + '\t' + std::to_string(function->line) : "\t") + '\n');
  }

  OutputFile& _output;
  StackTree _tree;
  std::vector<std::uint32_t> _frames;
};

const ExportFormat format("tsv", "functions with their own and total samples, as a table", {.profile = true},
                          [](OutputFile& output) -> std::unique_ptr<Exporter> {
                            return std::make_unique<Tsv>(output);
                          });

}  // namespace

}  // namespace zelkit
