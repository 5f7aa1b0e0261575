// The processed profile of the Firefox Profiler, version 70 (its docs-developer/CHANGELOG-formats.md): tables
// of columns that refer to each other by index. A profile and a timechart can share one file: tasks are
// threads, with their samples and, from the timechart, markers.

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <stdexcept>

#include "document/exports/ChartTrack.h"
#include "document/exports/ExportFormat.h"
#include "document/exports/JsonOutput.h"
#include "document/exports/ThreadSamples.h"

namespace zelkit {

namespace {

constexpr int kProcessedVersion = 70;
constexpr int kGeckoVersion = 36;
/// The type of resource that is a library.
constexpr int kLibraryResource = 1;

/// Indices into meta.categories. The viewer requires a grey one as default.
enum Category : int { kOther, kUser, kKernel };

enum Phase : int { kInstant, kInterval, kIntervalStart };

struct Marker {
  std::uint32_t name = 0;
  Phase phase = kInstant;
  double start = 0.0;
  double end = 0.0;
  /// Code and text, for events only.
  std::optional<std::pair<std::int64_t, std::string>> event;
};

struct Counter {
  std::string name;
  ChartTrack track;
  std::vector<double> times;
  std::vector<double> values;
};

/// A thread of the file, from the profile, the timechart, or both.
struct Thread {
  std::uint32_t pid = 0;
  std::uint32_t tid = 0;
  std::string process;
  std::string name;
  const ThreadSamples::Thread* samples = nullptr;
  std::vector<Marker> markers;

  bool isMain() const { return pid == tid; }
};

/// Texts and their indices in shared.stringArray.
class Strings {
 public:
  std::uint32_t indexOf(const std::string& text) {
    const auto [place, isNew] = _indices.try_emplace(text, static_cast<std::uint32_t>(_texts.size()));
    if (isNew) _texts.push_back(&place->first);
    return place->second;
  }
  const std::vector<const std::string*>& texts() const { return _texts; }

 private:
  std::map<std::string, std::uint32_t> _indices;
  std::vector<const std::string*> _texts;
};

/// A frame; each has its own function in the file.
struct Frame {
  std::uint32_t name = 0;
  std::optional<std::uint32_t> library;
  std::optional<std::uint32_t> source;
  std::uint32_t line = 0;
  Category category = kOther;
  /// The function's address within its library, if known.
  std::optional<std::uint64_t> address;
  std::uint64_t size = 0;
};

class Firefox : public Exporter {
 public:
  explicit Firefox(OutputFile& output) : _json(output) {}

  void documentStart(const std::string& name) override {
    if (!_title.empty()) _title += ", ";
    _title += validUtf8(name);
    _document = name;
    _hasProfile = _hasProfile || _inProfile;
    _hasTimechart = _hasTimechart || _inTimechart;
    _inProfile = _inTimechart = false;
  }
  void process(const ProcessRow& row) override {
    refuseSecond(_hasProfile);
    _inProfile = true;
    _samples.process(row);
  }
  void library(const LibraryRow& row) override { _samples.library(row); }
  void file(const FileRow& row) override { _samples.file(row); }
  void function(const FunctionRow& row) override { _samples.function(row); }
  void sample(const SampleRow& row) override {
    _samples.sample(row);
    _firstTime = std::min(_firstTime, row.time);
  }

  void seriesStart(const SeriesHead& head) override {
    refuseSecond(_hasTimechart);
    _inTimechart = true;
    _head = head;
    _start.reset();
    ChartTrack track = ChartTrack::of(head);
    if (track.tid == 0) track.tid = ++_ownThreads;
    _label = _strings.indexOf(validUtf8(head.tip.empty() ? head.name : head.tip));
    if (head.type == "bar")
      _counters.push_back({head.tip.empty() ? head.name : head.name + " " + head.tip, track, {}, {}});
    else
      _thread = &chartThread(track);
  }

  void point(double time, double value) override {
    _firstTime = std::min(_firstTime, time);
    if (_head.type == "bar") {
      _counters.back().times.push_back(time);
      _counters.back().values.push_back(value);
    } else if (_head.type == "marker") {
      _thread->markers.push_back({_label, kInstant, time, 0.0, {}});
    } else if (value != 0.0 && !_start) {
      _start = time;
    } else if (value == 0.0 && _start) {
      _thread->markers.push_back({_label, kInterval, *_start, time, {}});
      _start.reset();
    }
  }

  void event(const SeriesEvent& event) override {
    if (_thread == nullptr) return;
    _firstTime = std::min(_firstTime, event.time);
    _thread->markers.push_back({_strings.indexOf(validUtf8(event.name)), kInstant, event.time, 0.0,
                                std::pair(event.code, validUtf8(event.arguments))});
  }

  /// A series that is on at its end has no closing point.
  void seriesEnd() override {
    if (_start) _thread->markers.push_back({_label, kIntervalStart, *_start, 0.0, {}});
  }

  void finish() override {
    _samples.sort();
    gatherFrames();
    joinThreads();
    _json.startObject();
    writeMeta();
    writeLibraries();
    writeShared();
    writeThreads();
    writeCounters();
    _json.endObject();
    _json.flush();
  }

 private:
  void refuseSecond(bool hasOne) const {
    if (hasOne) throw std::runtime_error(_document + ": firefox takes one profile and one timechart");
  }

  Thread& chartThread(const ChartTrack& track) {
    Thread*& thread = _chartThreads[{track.pid, track.tid}];
    if (thread == nullptr)
      thread = &_threads.emplace_back(
          Thread{track.pid, track.tid, validUtf8(track.process), validUtf8(track.thread), nullptr, {}});
    return *thread;
  }

  /// Joins the samples and markers of a task, and sorts threads by process, the main thread first.
  void joinThreads() {
    for (const ThreadSamples::Thread& sampled : _samples.threads()) {
      const ProfileTables::Process* process = _samples.findProcess(sampled.pidKey);
      const std::uint32_t pid = process == nullptr ? 0 : process->pid;
      const auto known = _chartThreads.find({pid, sampled.tid});
      Thread& thread = known != _chartThreads.end() && known->second->samples == nullptr
                           ? *known->second
                           : _threads.emplace_back();
      thread.pid = pid;
      thread.tid = sampled.tid;
      thread.process = validUtf8(_samples.processName(sampled.pidKey));
      thread.name = validUtf8(_samples.threadTitle(sampled));
      thread.samples = &sampled;
    }
    for (const Thread& thread : _threads) _order.push_back(&thread);
    std::stable_sort(_order.begin(), _order.end(), [](const Thread* left, const Thread* right) {
      return std::pair(left->pid, !left->isMain()) < std::pair(right->pid, !right->isMain());
    });
  }

  void gatherFrames() {
    const StackTree& tree = _samples.tree();
    std::map<std::uint32_t, std::uint32_t> byKey;
    for (StackTree::Node node = 1; node < tree.size(); ++node) {
      const std::uint32_t key = ThreadSamples::frameKey(tree, node);
      const auto [place, isNew] = byKey.try_emplace(key, static_cast<std::uint32_t>(_frames.size()));
      if (isNew) _frames.push_back(frameOf(key));
      _frameOfNode.push_back(place->second);
    }
  }

  Frame frameOf(std::uint32_t key) {
    Frame frame;
    frame.name = _strings.indexOf(validUtf8(_samples.frameName(key)));
    const ProfileTables::Library* library = _samples.libraryOf(key);
    frame.category = library == nullptr ? kOther : _samples.isKernel(key) ? kKernel : kUser;
    if (library != nullptr) frame.library = indexIn(_libraries, validUtf8(library->name));
    const ProfileTables::Function* function = _samples.findFunction(key);
    if (function == nullptr) return frame;
    if (!function->file.empty()) frame.source = indexIn(_sources, validUtf8(function->file));
    frame.line = function->line;
    frame.size = function->size;
    if (library != nullptr) {
      // Addresses in a program and in the kernel are absolute.
      const bool isAbsolute = function->start - library->start <= library->size;
      frame.address = isAbsolute ? function->start - library->start : function->start;
    }
    return frame;
  }

  std::uint32_t indexIn(std::map<std::string, std::uint32_t>& names, std::string name) {
    return names.try_emplace(std::move(name), static_cast<std::uint32_t>(names.size())).first->second;
  }

  static std::vector<const std::string*> byIndex(const std::map<std::string, std::uint32_t>& names) {
    std::vector<const std::string*> ordered(names.size());
    for (const auto& [name, index] : names) ordered[index] = &name;
    return ordered;
  }

  /// Writes a column with one value for each element.
  template <typename Elements, typename Write>
  void column(const char* name, const Elements& elements, Write write) {
    _json.key(name);
    _json.startArray();
    for (const auto& element : elements) write(element);
    _json.endArray();
  }

  template <typename Elements, typename Value>
  void constant(const char* name, const Elements& elements, Value value) {
    column(name, elements, [&](const auto&) { _json.value(value); });
  }

  template <typename Elements>
  void nulls(const char* name, const Elements& elements) {
    column(name, elements, [&](const auto&) { _json.null(); });
  }

  template <typename Number>
  void valueOrNull(const std::optional<Number>& number) {
    number ? _json.value(*number) : _json.null();
  }

  void length(std::size_t rows) { _json.member("length", static_cast<std::uint64_t>(rows)); }

  /// Returns milliseconds since the first moment of the file.
  double milliseconds(double seconds) const {
    // Rounded to nanoseconds, the resolution of documents.
    return std::round((seconds - _firstTime) * 1e9) / 1e6;
  }

  void writeMeta() {
    _json.key("meta");
    _json.startObject();
    _json.member("version", kGeckoVersion);
    _json.member("preprocessedProfileVersion", kProcessedVersion);
    _json.member("product", _title);
    _json.member("importedFrom", "zelkit");
    _json.member("interval", 1);
    _json.member("startTime", 0);
    _json.member("processType", 0);
    _json.member("stackwalk", 1);
    _json.member("debug", false);
    _json.member("symbolicated", true);
    _json.member("symbolicationNotSupported", true);
    _json.member("usesOnlyOneStackType", true);
    _json.member("sourceCodeIsNotOnSearchfox", true);
    _json.key("sampleUnits");
    _json.startObject();
    _json.member("time", "ms");
    _json.member("eventDelay", "ms");
    _json.member("threadCPUDelta", "ns");
    _json.endObject();
    writeCategories();
    writeMarkerSchema();
    _json.endObject();
  }

  void writeCategories() {
    static constexpr std::pair<const char*, const char*> kCategories[] = {
        {"Other", "grey"}, {"User", "yellow"}, {"Kernel", "orange"}};
    column("categories", kCategories, [&](const auto& category) {
      _json.startObject();
      _json.member("name", category.first);
      _json.member("color", category.second);
      _json.key("subcategories");
      _json.startArray();
      _json.value("Other");
      _json.endArray();
      _json.endObject();
    });
  }

  void writeMarkerSchema() {
    _json.key("markerSchema");
    _json.startArray();
    writeSchema("state", {});
    writeSchema("event", {{"text", "string"}, {"code", "integer"}});
    _json.endArray();
  }

  void writeSchema(const char* name, const std::vector<std::pair<const char*, const char*>>& fields) {
    static constexpr const char* kPlaces[] = {"marker-chart", "marker-table", "timeline-overview"};
    _json.startObject();
    _json.member("name", name);
    column("display", kPlaces, [&](const char* place) { _json.value(place); });
    column("fields", fields, [&](const auto& field) {
      _json.startObject();
      _json.member("key", field.first);
      _json.member("label", field.first);
      _json.member("format", field.second);
      _json.endObject();
    });
    _json.endObject();
  }

  void writeLibraries() {
    column("libs", byIndex(_libraries), [&](const std::string* path) {
      const std::string name = path->substr(path->rfind('/') + 1);
      _json.startObject();
      _json.member("arch", "");
      _json.member("name", name);
      _json.member("path", *path);
      _json.member("debugName", name);
      _json.member("debugPath", *path);
      _json.member("breakpadId", "");
      _json.key("codeId");
      _json.null();
      _json.endObject();
    });
  }

  template <typename Write>
  void table(const char* name, Write write) {
    _json.key(name);
    _json.startObject();
    write();
    _json.endObject();
  }

  void writeShared() {
    // The names are texts of the string array, which is written last.
    std::vector<std::uint32_t> libraryNames;
    for (const std::string* name : byIndex(_libraries)) libraryNames.push_back(_strings.indexOf(*name));
    std::vector<std::uint32_t> sourceNames;
    for (const std::string* name : byIndex(_sources)) sourceNames.push_back(_strings.indexOf(*name));
    table("shared", [&] {
      table("stackTable", [&] { writeStacks(); });
      table("frameTable", [&] { writeFrames(); });
      table("funcTable", [&] { writeFunctions(); });
      table("nativeSymbols", [&] { writeSymbols(); });
      table("resourceTable", [&] { writeResources(libraryNames); });
      table("sources", [&] { writeSources(sourceNames); });
      table("sourceLocationTable", [&] { writeNoLocations(); });
      column("stringArray", _strings.texts(), [&](const std::string* text) { _json.value(*text); });
    });
  }

  void writeStacks() {
    const StackTree& tree = _samples.tree();
    column("frame", _frameOfNode, [&](std::uint32_t frame) { _json.value(frame); });
    StackTree::Node node = 0;
    column("prefixOffset", _frameOfNode, [&](std::uint32_t) {
      const StackTree::Node parent = tree.parent(++node);
      _json.value(parent == StackTree::kRoot ? 0 : node - parent);
    });
    length(_frameOfNode.size());
  }

  void writeFrames() {
    column("address", _frames,
           [&](const Frame& frame) { frame.address ? _json.value(*frame.address) : _json.value(-1); });
    constant("inlineDepth", _frames, 0);
    column("category", _frames, [&](const Frame& frame) { _json.value(static_cast<int>(frame.category)); });
    constant("subcategory", _frames, 0);
    std::uint32_t next = 0;
    column("func", _frames, [&](const Frame&) { _json.value(next++); });
    column("lib", _frames, [&](const Frame& frame) { indexOrNone(frame.library); });
    std::uint32_t symbol = 0;
    column("nativeSymbol", _frames,
           [&](const Frame& frame) { frame.address ? _json.value(symbol++) : _json.null(); });
    nulls("innerWindowID", _frames);
    column("line", _frames, [&](const Frame& frame) { lineOrNull(frame); });
    nulls("column", _frames);
    nulls("originalLocation", _frames);
    length(_frames.size());
  }

  void writeFunctions() {
    column("name", _frames, [&](const Frame& frame) { _json.value(frame.name); });
    constant("isJS", _frames, false);
    constant("relevantForJS", _frames, false);
    column("resource", _frames, [&](const Frame& frame) { indexOrNone(frame.library); });
    column("source", _frames, [&](const Frame& frame) { valueOrNull(frame.source); });
    column("lineNumber", _frames, [&](const Frame& frame) { lineOrNull(frame); });
    nulls("columnNumber", _frames);
    nulls("originalLocation", _frames);
    length(_frames.size());
  }

  void indexOrNone(const std::optional<std::uint32_t>& index) {
    index ? _json.value(*index) : _json.value(-1);
  }
  void lineOrNull(const Frame& frame) { frame.line != 0 ? _json.value(frame.line) : _json.null(); }

  void writeSymbols() {
    std::vector<const Frame*> symbols;
    for (const Frame& frame : _frames)
      if (frame.address) symbols.push_back(&frame);
    column("libIndex", symbols, [&](const Frame* frame) { _json.value(*frame->library); });
    column("address", symbols, [&](const Frame* frame) { _json.value(*frame->address); });
    column("name", symbols, [&](const Frame* frame) { _json.value(frame->name); });
    column("functionSize", symbols,
           [&](const Frame* frame) { frame->size != 0 ? _json.value(frame->size) : _json.null(); });
    length(symbols.size());
  }

  /// The resources are the libraries, in the same order.
  void writeResources(const std::vector<std::uint32_t>& names) {
    std::uint32_t next = 0;
    column("lib", names, [&](std::uint32_t) { _json.value(next++); });
    column("name", names, [&](std::uint32_t name) { _json.value(name); });
    nulls("host", names);
    constant("type", names, kLibraryResource);
    length(names.size());
  }

  void writeSources(const std::vector<std::uint32_t>& names) {
    nulls("id", names);
    column("filename", names, [&](std::uint32_t name) { _json.value(name); });
    constant("startLine", names, 1);
    constant("startColumn", names, 1);
    nulls("sourceMapURL", names);
    nulls("content", names);
    length(names.size());
  }

  void writeNoLocations() {
    for (const char* name : {"source", "line", "column"}) nulls(name, std::vector<int>());
    length(0);
  }

  void writeThreads() {
    column("threads", _order, [&](const Thread* thread) {
      _json.startObject();
      _json.member("processType", "default");
      _json.member("processStartupTime", 0);
      _json.key("processShutdownTime");
      _json.null();
      _json.member("registerTime", 0);
      _json.key("unregisterTime");
      _json.null();
      nulls("pausedRanges", std::vector<int>());
      _json.member("name", thread->name);
      _json.member("isMainThread", thread->isMain());
      _json.member("processName", thread->process);
      _json.member("pid", std::to_string(thread->pid));
      _json.member("tid", thread->tid);
      _json.member("showMarkersInTimeline", true);
      table("samples", [&] { writeSamples(thread->samples); });
      table("markers", [&] { writeMarkers(thread->markers); });
      _json.endObject();
    });
  }

  void writeSamples(const ThreadSamples::Thread* samples) {
    static const ThreadSamples::Thread kNone;
    if (samples == nullptr) samples = &kNone;
    column("stack", samples->nodes, [&](StackTree::Node node) { _json.value(node - 1); });
    column("time", samples->times, [&](double time) { _json.value(milliseconds(time)); });
    _json.key("weight");
    _json.null();
    _json.member("weightType", "samples");
    length(samples->nodes.size());
  }

  void writeMarkers(const std::vector<Marker>& markers) {
    column("data", markers, [&](const Marker& marker) { writePayload(marker); });
    column("name", markers, [&](const Marker& marker) { _json.value(marker.name); });
    column("startTime", markers, [&](const Marker& marker) { _json.value(milliseconds(marker.start)); });
    column("endTime", markers, [&](const Marker& marker) {
      marker.phase == kInterval ? _json.value(milliseconds(marker.end)) : _json.null();
    });
    column("phase", markers, [&](const Marker& marker) { _json.value(static_cast<int>(marker.phase)); });
    constant("category", markers, static_cast<int>(kOther));
    length(markers.size());
  }

  void writePayload(const Marker& marker) {
    _json.startObject();
    _json.member("type", marker.event ? "event" : "state");
    if (marker.event) {
      _json.member("code", marker.event->first);
      _json.member("text", marker.event->second);
    }
    _json.endObject();
  }

  void writeCounters() {
    column("counters", _counters, [&](const Counter& counter) {
      const std::string name = validUtf8(counter.name);
      _json.startObject();
      _json.member("name", name);
      _json.member("category", "zelkit");
      _json.member("description", name);
      _json.member("pid", std::to_string(counter.track.pid));
      _json.member("mainThreadIndex", firstThreadOf(counter.track.pid));
      table("samples", [&] { writeCounterSamples(counter); });
      table("display", [&] { writeDisplay(name); });
      _json.endObject();
    });
  }

  /// The viewer sums the values, so each sample is the difference from the previous one.
  void writeCounterSamples(const Counter& counter) {
    column("time", counter.times, [&](double time) { _json.value(milliseconds(time)); });
    double before = 0.0;
    column("count", counter.values, [&](double value) {
      _json.value(value - before);
      before = value;
    });
    length(counter.times.size());
  }

  void writeDisplay(const std::string& label) {
    _json.member("graphType", "line-accumulated");
    _json.member("unit", "");
    _json.member("color", "blue");
    _json.key("markerSchemaLocation");
    _json.null();
    _json.member("sortWeight", 50);
    _json.member("label", label);
  }

  std::uint32_t firstThreadOf(std::uint32_t pid) const {
    const auto found =
        std::find_if(_order.begin(), _order.end(), [&](const Thread* thread) { return thread->pid == pid; });
    return found == _order.end() ? 0 : static_cast<std::uint32_t>(found - _order.begin());
  }

  JsonOutput _json;
  std::string _title;
  std::string _document;
  bool _hasProfile = false;
  bool _hasTimechart = false;
  bool _inProfile = false;
  bool _inTimechart = false;
  ThreadSamples _samples;
  Strings _strings;
  double _firstTime = std::numeric_limits<double>::max();

  SeriesHead _head;
  std::uint32_t _label = 0;
  std::optional<double> _start;
  Thread* _thread = nullptr;
  std::uint32_t _ownThreads = 0;
  std::deque<Thread> _threads;
  std::map<std::pair<std::uint32_t, std::uint32_t>, Thread*> _chartThreads;
  std::deque<Counter> _counters;

  std::vector<Frame> _frames;
  /// By node of the tree, from node 1 on.
  std::vector<std::uint32_t> _frameOfNode;
  std::map<std::string, std::uint32_t> _libraries;
  std::map<std::string, std::uint32_t> _sources;
  std::vector<const Thread*> _order;
};

const ExportFormat format("firefox",
                          "processed profile for the Firefox Profiler, of a profile and a timechart",
                          {.profile = true, .timechart = true, .several = true},
                          [](OutputFile& output) -> std::unique_ptr<Exporter> {
                            return std::make_unique<Firefox>(output);
                          });

}  // namespace

}  // namespace zelkit
