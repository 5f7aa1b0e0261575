// Functions as a table of tab-separated values: for spreadsheets and awk.

#include <algorithm>

#include "document/ProfileTables.h"
#include "document/exports/ExportFormat.h"
#include "document/exports/TsvCell.h"

namespace zelkit {

namespace {

class Tsv : public Exporter {
 public:
  explicit Tsv(OutputFile& output) : _output(output) {
    _output.write("self\ttotal\tfunction\tlibrary\tfile\tline\n");
  }

  void process(const ProcessRow& row) override { _tables.process(row); }
  void library(const LibraryRow& row) override { _tables.library(row); }
  void file(const FileRow& row) override { _tables.file(row); }
  void function(const FunctionRow& row) override { _tables.function(row); }

  void sample(const SampleRow& row) override {
    ++_counts[row.mapKey].self;
    _frames.clear();
    forEachFrame(row, [&](std::uint32_t key) { _frames.push_back(key); });
    std::sort(_frames.begin(), _frames.end());
    _frames.erase(std::unique(_frames.begin(), _frames.end()), _frames.end());
    for (const std::uint32_t key : _frames) ++_counts[key].total;
  }

  void documentEnd() override {
    std::vector<std::pair<std::uint32_t, Count>> rows(_counts.begin(), _counts.end());
    std::stable_sort(rows.begin(), rows.end(), [](const auto& left, const auto& right) {
      return std::pair(left.second.self, left.second.total) >
             std::pair(right.second.self, right.second.total);
    });
    for (const auto& [key, count] : rows) writeRow(key, count);
    _counts.clear();
    _tables.clear();
  }

  void finish() override {}

 private:
  /// Samples in the function itself, and the total with those in its callees; a recursive call counts once.
  struct Count {
    std::uint64_t self = 0;
    std::uint64_t total = 0;
  };

  void writeRow(std::uint32_t key, const Count& count) {
    const ProfileTables::Function* function = _tables.findFunction(key);
    const ProfileTables::Library* library = _tables.libraryOf(key);
    const bool hasFile = function != nullptr && !function->file.empty();
    _output.write(std::to_string(count.self) + '\t' + std::to_string(count.total) + '\t' +
                  tsvCell(_tables.frameName(key)) + '\t' + tsvCell(library == nullptr ? "" : library->name) +
                  '\t' + (hasFile ? tsvCell(function->file) + '\t' + std::to_string(function->line) : "\t") +
                  '\n');
  }

  OutputFile& _output;
  ProfileTables _tables;
  std::map<std::uint32_t, Count> _counts;
  std::vector<std::uint32_t> _frames;
};

const ExportFormat format("tsv", "functions with their own and total samples, as a table", {.profile = true},
                          [](OutputFile& output) -> std::unique_ptr<Exporter> {
                            return std::make_unique<Tsv>(output);
                          });

}  // namespace

}  // namespace zelkit
