// The CPU profile of the browsers' developer tools (Chrome DevTools Protocol, Profiler.Profile): a tree of
// call frames and the samples in the order of time as nodes of it. Threads are the first level, as the format
// has one time line.

#include <algorithm>

#include "document/exports/ExportFormat.h"
#include "document/exports/JsonOutput.h"
#include "document/exports/ThreadSamples.h"
#include "document/exports/WholeUnits.h"

namespace zelkit {

namespace {

class CpuProfile : public Exporter {
 public:
  explicit CpuProfile(OutputFile& output) : _json(output) {}

  ReadOutcome read(ByteSource& source) override { return readDocument(source, _samples); }

  void finish() override {
    gather();
    _json.startObject();
    writeNodes();
    writeTimes();
    _json.endObject();
    _json.flush();
  }

 private:
  struct Moment {
    double time = 0.0;
    StackTree::Node node = StackTree::kRoot;
  };

  /// Copies the stacks of each thread below a node for the thread, and sorts the samples of all threads by
  /// time.
  void gather() {
    std::uint32_t index = 0;
    for (const ThreadSamples::Thread& thread : _samples.threads()) {
      const StackTree::Node root = _tree.child(StackTree::kRoot, index++);
      std::map<StackTree::Node, StackTree::Node> copies{{StackTree::kRoot, root}};
      for (std::size_t i = 0; i < thread.nodes.size(); ++i) {
        const StackTree::Node node = copyOf(thread.nodes[i], copies);
        _tree.count(node);
        _moments.push_back({thread.times[i], node});
      }
    }
    std::stable_sort(_moments.begin(), _moments.end(),
                     [](const Moment& left, const Moment& right) { return left.time < right.time; });
  }

  StackTree::Node copyOf(StackTree::Node node, std::map<StackTree::Node, StackTree::Node>& copies) {
    std::vector<StackTree::Node> path;
    auto known = copies.find(node);
    for (; known == copies.end(); known = copies.find(node)) {
      path.push_back(node);
      node = _samples.tree().parent(node);
    }
    StackTree::Node copy = known->second;
    for (std::size_t i = path.size(); i-- > 0;) {
      copy = _tree.child(copy, _samples.tree().label(path[i]));
      copies[path[i]] = copy;
    }
    return copy;
  }

  void writeNodes() {
    std::vector<std::vector<StackTree::Node>> children(_tree.size());
    for (StackTree::Node node = 1; node < _tree.size(); ++node) children[_tree.parent(node)].push_back(node);
    _json.key("nodes");
    _json.startArray();
    for (StackTree::Node node = 0; node < _tree.size(); ++node) {
      _json.startObject();
      _json.member("id", idOf(node));
      writeFrame(node);
      _json.member("hitCount", _tree.self(node));
      _json.key("children");
      _json.startArray();
      for (const StackTree::Node child : children[node]) _json.value(idOf(child));
      _json.endArray();
      _json.endObject();
    }
    _json.endArray();
  }

  /// Ids of the format start at 1.
  static std::uint32_t idOf(StackTree::Node node) { return node + 1; }

  void writeFrame(StackTree::Node node) {
    const auto label = static_cast<std::uint32_t>(_tree.label(node));
    const bool isThread = node != StackTree::kRoot && _tree.parent(node) == StackTree::kRoot;
    const bool isFrame = node != StackTree::kRoot && !isThread;
    const ProfileTables::Origin origin = isFrame ? _samples.originOf(label) : ProfileTables::Origin{};
    _json.key("callFrame");
    _json.startObject();
    _json.member("functionName", isFrame    ? validUtf8(_samples.frameName(label))
                                 : isThread ? validUtf8(_samples.threadTitle(_samples.threads()[label]))
                                            : std::string("(root)"));
    _json.member("scriptId", "0");
    _json.member("url", validUtf8(origin.name));
    // Lines count from 0 here.
    _json.member("lineNumber", std::int64_t{origin.line} - 1);
    _json.member("columnNumber", -1);
    _json.endObject();
  }

  void writeTimes() {
    const auto microseconds = [](double seconds) { return wholeUnits(seconds, kMicrosecondsPerSecond); };
    const std::int64_t start = _moments.empty() ? 0 : microseconds(_moments.front().time);
    _json.member("startTime", start);
    _json.member("endTime", _moments.empty() ? 0 : microseconds(_moments.back().time));
    _json.key("samples");
    _json.startArray();
    for (const Moment& moment : _moments) _json.value(idOf(moment.node));
    _json.endArray();
    _json.key("timeDeltas");
    _json.startArray();
    std::int64_t before = start;
    for (const Moment& moment : _moments) {
      const std::int64_t time = microseconds(moment.time);
      _json.value(time - before);
      before = time;
    }
    _json.endArray();
  }

  JsonOutput _json;
  ThreadSamples _samples;
  StackTree _tree;
  std::vector<Moment> _moments;
};

const ExportFormat format("cpuprofile", "for the Performance panel of a browser's developer tools",
                          {.profile = true}, [](OutputFile& output) -> std::unique_ptr<Exporter> {
                            return std::make_unique<CpuProfile>(output);
                          });

}  // namespace

}  // namespace zelkit
