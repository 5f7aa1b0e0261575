// Samples as a table of tab-separated values, one line each: for spreadsheets, awk and data bases.

#include <array>
#include <charconv>

#include "document/LayoutFile.h"
#include "document/ProfileTables.h"
#include "document/exports/ExportFormat.h"
#include "document/exports/TsvCell.h"

namespace zelkit {

namespace {

class TsvSamples : public Exporter, private ProfileTables {
 public:
  explicit TsvSamples(OutputFile& output) : _output(output) {
    _output.write("time\tcore\tpid\ttid\tprocess\taddress\tfunction\tlibrary\tcallers\n");
  }

  void documentStart(const std::string& name) override { _layout = LayoutFile::beside(name); }
  ReadOutcome read(ByteSource& source) override { return readDocument(source, *this); }

  void sample(const SampleRow& row) override {
    const Process* process = findProcess(row.pidKey);
    const std::uint32_t pid = process == nullptr ? 0 : process->pid;
    _line.clear();
    append(row.time);
    append(row.cpu);
    append(pid);
    append(row.tid);
    append(process == nullptr ? "" : process->name);
    _line += "0x";
    append(_layout.original(pid, row.ip), 16);
    append(nameOf(row.mapKey));
    const Library* library = libraryOf(row.mapKey);
    append(library == nullptr ? "" : library->name);
    appendCallers(row);
    _output.write(_line);
  }

  void documentEnd() override {
    ProfileTables::clear();
    _names.clear();
    _recent = {};
  }

  void finish() override {}

 private:
  /// Appends a cell and a tab.
  void append(const std::string& text) { _line += tsvCell(text) + '\t'; }
  template <typename Number, typename... Base>
  void append(Number number, Base... base) {
    std::array<char, 32> digits{};
    _line.append(digits.data(),
                 std::to_chars(digits.data(), digits.data() + digits.size(), number, base...).ptr);
    _line += '\t';
  }

  /// Appends the callers, innermost first, separated by semicolons.
  void appendCallers(const SampleRow& row) {
    std::size_t depth = 0;
    forEachFrame(row, [&](std::uint32_t key) {
      if (depth > 1) _line += ';';
      if (depth++ > 0) _line += nameOf(key);
    });
    _line += '\n';
  }

  const std::string& nameOf(std::uint32_t key) {
    Recent& recent = _recent[key % kRecentNames];
    if (recent.name == nullptr || recent.key != key) recent = {key, &cellOf(key)};
    return *recent.name;
  }

  const std::string& cellOf(std::uint32_t key) {
    const auto [place, isNew] = _names.try_emplace(key);
    if (isNew) {
      place->second = tsvCell(frameName(key));
      std::replace(place->second.begin(), place->second.end(), ';', ':');
    }
    return place->second;
  }

  static constexpr std::size_t kRecentNames = 4096;
  struct Recent {
    std::uint32_t key = 0;
    const std::string* name = nullptr;
  };

  OutputFile& _output;
  LayoutFile _layout;
  std::map<std::uint32_t, std::string> _names;
  /// The names of frames that were asked for last, by their keys.
  std::array<Recent, kRecentNames> _recent;
  std::string _line;
};

const ExportFormat format("tsv-samples", "each sample with its time, thread, address and callers, as a table",
                          {.profile = true, .several = true},
                          [](OutputFile& output) -> std::unique_ptr<Exporter> {
                            return std::make_unique<TsvSamples>(output);
                          });

}  // namespace

}  // namespace zelkit
