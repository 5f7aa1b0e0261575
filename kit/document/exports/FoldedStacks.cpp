// Folded stacks, one line each: "process;outermost;...;innermost count". Semicolons in names are removed, as
// they separate frames.

#include <algorithm>
#include <map>

#include "document/ProfileTables.h"
#include "document/StackTree.h"
#include "document/exports/ExportFormat.h"

namespace zelkit {

namespace {

class FoldedStacks : public Exporter, private ProfileTables {
 public:
  explicit FoldedStacks(OutputFile& output) : _output(output) {}

  ReadOutcome read(ByteSource& source) override { return readDocument(source, *this); }

  void sample(const SampleRow& sample) override {
    _frames.clear();
    forEachFrame(sample, [&](std::uint32_t key) { _frames.push_back(key); });
    _tree.count(_tree.path(_tree.child(StackTree::kRoot, sample.pidKey), _frames));
  }

  void documentEnd() override {
    for (StackTree::Node node = 1; node < _tree.size(); ++node)
      if (_tree.self(node) != 0) writeLine(node);
    _tree = {};
    ProfileTables::clear();
    _names.clear();
  }

  void finish() override {}

 private:
  void writeLine(StackTree::Node node) {
    std::vector<StackTree::Node> path;
    for (StackTree::Node at = node; at != StackTree::kRoot; at = _tree.parent(at)) path.push_back(at);
    _line.clear();
    for (std::size_t i = path.size(); i-- > 0;) {
      _line += nameOf(path[i]);
      _line += i == 0 ? ' ' : ';';
    }
    _line += std::to_string(_tree.self(node));
    _line += '\n';
    _output.write(_line);
  }

  const std::string& nameOf(StackTree::Node node) {
    const bool isProcess = _tree.parent(node) == StackTree::kRoot;
    const auto key = static_cast<std::uint32_t>(_tree.label(node));
    const auto [place, isNew] = _names.try_emplace({isProcess, key});
    if (isNew) {
      const Process* process = findProcess(key);
      place->second = !isProcess ? frameName(key) : process != nullptr ? process->name : "[unknown]";
      std::replace(place->second.begin(), place->second.end(), ';', ':');
      std::replace_if(
          place->second.begin(), place->second.end(), [](unsigned char byte) { return byte < 0x20; }, ' ');
    }
    return place->second;
  }

  OutputFile& _output;
  StackTree _tree;
  std::vector<std::uint32_t> _frames;
  std::map<std::pair<bool, std::uint32_t>, std::string> _names;
  std::string _line;
};

const ExportFormat format("folded", "folded stacks, for flame graph scripts",
                          {.profile = true, .several = true},
                          [](OutputFile& output) -> std::unique_ptr<Exporter> {
                            return std::make_unique<FoldedStacks>(output);
                          });

}  // namespace

}  // namespace zelkit
