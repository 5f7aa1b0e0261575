// The file format of speedscope (its file-format-schema.json): one list of frames, and for each thread its
// samples in order of time, each a list of frames, outermost first.

#include <array>
#include <charconv>

#include "document/exports/ExportFormat.h"
#include "document/exports/JsonOutput.h"
#include "document/exports/ThreadSamples.h"

namespace zelkit {

namespace {

class Speedscope : public Exporter {
 public:
  explicit Speedscope(OutputFile& output) : _json(output) {}

  void documentStart(const std::string& name) override { _name = validUtf8(name); }
  ReadOutcome read(ByteSource& source) override { return readDocument(source, _samples); }

  void finish() override {
    _samples.sort();
    _json.startObject();
    _json.member("$schema", "https://www.speedscope.app/file-format-schema.json");
    _json.member("name", _name);
    _json.member("exporter", "zelkit");
    _json.key("shared");
    _json.startObject();
    writeFrames();
    _json.endObject();
    _json.key("profiles");
    _json.startArray();
    for (const ThreadSamples::Thread& thread : _samples.threads()) writeThread(thread);
    _json.endArray();
    _json.endObject();
    _json.flush();
  }

 private:
  void writeFrames() {
    const StackTree& tree = _samples.tree();
    _frames.resize(tree.size());
    std::map<std::uint32_t, std::uint32_t> frames;
    _json.key("frames");
    _json.startArray();
    for (StackTree::Node node = 1; node < tree.size(); ++node) {
      const std::uint32_t key = ThreadSamples::frameKey(tree, node);
      const auto [frame, isNew] = frames.try_emplace(key, static_cast<std::uint32_t>(frames.size()));
      _frames[node] = frame->second;
      if (isNew) writeFrame(key);
    }
    _json.endArray();
  }

  void writeFrame(std::uint32_t key) {
    _json.startObject();
    _json.member("name", validUtf8(_samples.frameName(key)));
    const ProfileTables::Origin origin = _samples.originOf(key);
    if (!origin.name.empty()) _json.member("file", validUtf8(origin.name));
    if (origin.line != 0) _json.member("line", origin.line);
    _json.endObject();
  }

  void writeThread(const ThreadSamples::Thread& thread) {
    _json.startObject();
    _json.member("type", "sampled");
    _json.member("name", validUtf8(_samples.threadTitle(thread)));
    _json.member("unit", "none");
    _json.member("startValue", 0);
    _json.member("endValue", static_cast<std::uint64_t>(thread.nodes.size()));
    _json.key("samples");
    _json.startArray();
    for (const StackTree::Node node : thread.nodes) _json.raw(stackText(node), rapidjson::kArrayType);
    _json.endArray();
    _json.key("weights");
    _json.startArray();
    for (std::size_t i = 0; i < thread.nodes.size(); ++i) _json.value(1);
    _json.endArray();
    _json.endObject();
  }

  /// Returns "[frame,frame]", outermost frame first.
  const std::string& stackText(StackTree::Node node) {
    _path.clear();
    for (; node != StackTree::kRoot; node = _samples.tree().parent(node)) _path.push_back(_frames[node]);
    _text = '[';
    for (std::size_t i = _path.size(); i-- > 0;) {
      std::array<char, 12> digits;
      char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), _path[i]).ptr;
      *end = i == 0 ? ']' : ',';
      _text.append(digits.data(), end + 1);
    }
    return _text;
  }

  JsonOutput _json;
  ThreadSamples _samples;
  std::string _name;
  std::vector<std::uint32_t> _frames;
  std::vector<std::uint32_t> _path;
  std::string _text;
};

const ExportFormat format("speedscope", "JSON for speedscope: time order, left heavy, sandwich",
                          {.profile = true}, [](OutputFile& output) -> std::unique_ptr<Exporter> {
                            return std::make_unique<Speedscope>(output);
                          });

}  // namespace

}  // namespace zelkit
