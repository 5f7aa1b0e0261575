// The processed profile of the Firefox Profiler, version 70 (its docs-developer/CHANGELOG-formats.md): tables
// of columns that refer to each other by index. A profile and a timechart can share one file: tasks are
// threads, and what they did stands as markers beside their samples.

#include <algorithm>
#include <set>
#include <stdexcept>

#include "document/ByKind.h"
#include "document/exports/ExportFormat.h"
#include "document/exports/FirefoxChart.h"
#include "document/exports/FirefoxFrames.h"

namespace zelkit {

namespace {

constexpr int kProcessedVersion = 70;
constexpr int kGeckoVersion = 36;

/// A thread of the file: one of the profile, one of the timechart, or one of both.
struct Thread {
  std::uint32_t pid = 0;
  std::uint32_t tid = 0;
  std::string process;
  std::string name;
  /// Null if it has none.
  const ThreadSamples::Thread* samples = nullptr;
  const std::vector<FirefoxChart::Marker>* markers = nullptr;

  bool isMain() const { return pid == tid; }
};

class Firefox : public Exporter {
 public:
  explicit Firefox(OutputFile& output) : _json(output) {}

  void documentStart(const std::string& name) override {
    if (!_title.empty()) _title += ", ";
    _title += validUtf8(name);
  }

  ReadOutcome read(ByteSource& source) override {
    ByKind both(_samples, _chart);
    ReadOutcome outcome = readDocument(source, both);
    if (!_kinds.insert(outcome.kind).second)
      throw std::runtime_error(source.name() + ": firefox holds one profile and one timechart");
    return outcome;
  }

  void finish() override {
    _samples.sort();
    joinThreads();
    findFirstTime();
    const FirefoxFrames frames(_samples, _strings);
    _json.startObject();
    _json.object("meta", [&] { writeMeta(); });
    frames.writeLibraries(_json);
    _json.object("shared", [&] {
      frames.writeTables(_json);
      _json.column("stringArray", _strings.texts(), [&](const std::string* text) { _json.value(*text); });
    });
    _json.column("threads", _threads, [&](const Thread& thread) { writeThread(thread); });
    _json.column("counters", _chart.counters(),
                 [&](const FirefoxChart::Counter& counter) { writeCounter(counter); });
    _json.endObject();
    _json.flush();
  }

 private:
  /// Joins the samples and markers of a task, and sorts threads by process, the main thread first.
  void joinThreads() {
    std::map<std::pair<std::uint32_t, std::uint32_t>, std::size_t> charted;
    for (const FirefoxChart::Thread& chart : _chart.threads()) {
      const ChartTrack& track = chart.track;
      charted[{track.pid, track.tid}] = _threads.size();
      _threads.push_back(
          {track.pid, track.tid, validUtf8(track.process), validUtf8(track.thread), nullptr, &chart.markers});
    }
    for (const ThreadSamples::Thread& sampled : _samples.threads()) {
      const ProfileTables::Process* process = _samples.findProcess(sampled.pidKey);
      const std::uint32_t pid = process == nullptr ? 0 : process->pid;
      const auto known = charted.find({pid, sampled.tid});
      const bool isShared = known != charted.end() && _threads[known->second].samples == nullptr;
      Thread& thread = isShared ? _threads[known->second] : _threads.emplace_back();
      thread.pid = pid;
      thread.tid = sampled.tid;
      thread.process = validUtf8(_samples.processName(sampled.pidKey));
      thread.name = validUtf8(_samples.threadTitle(sampled));
      thread.samples = &sampled;
    }
    std::stable_sort(_threads.begin(), _threads.end(), [](const Thread& left, const Thread& right) {
      return std::pair(left.pid, !left.isMain()) < std::pair(right.pid, !right.isMain());
    });
  }

  void findFirstTime() {
    _firstTime = _chart.firstTime();
    for (const ThreadSamples::Thread& thread : _samples.threads())
      _firstTime = std::min(_firstTime, thread.times.front());
  }

  void writeMeta() {
    _json.member("version", kGeckoVersion);
    _json.member("preprocessedProfileVersion", kProcessedVersion);
    _json.member("product", _title);
    _json.member("importedFrom", "zelkit");
    _json.member("interval", 1);
    _json.member("startTime", 0);
    _json.member("processType", 0);
    _json.member("stackwalk", 1);
    _json.member("debug", false);
    for (const char* flag :
         {"symbolicated", "symbolicationNotSupported", "usesOnlyOneStackType", "sourceCodeIsNotOnSearchfox"})
      _json.member(flag, true);
    _json.object("sampleUnits", [&] {
      _json.member("time", "ms");
      _json.member("eventDelay", "ms");
      _json.member("threadCPUDelta", "ns");
    });
    writeCategories();
    FirefoxChart::writeSchemas(_json);
  }

  void writeCategories() {
    static constexpr std::pair<const char*, const char*> kCategories[] = {
        {"Other", "grey"}, {"User", "yellow"}, {"Kernel", "orange"}};
    _json.column("categories", kCategories, [&](const auto& category) {
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

  void writeThread(const Thread& thread) {
    _json.startObject();
    _json.member("processType", "default");
    _json.member("processStartupTime", 0);
    _json.nullMember("processShutdownTime");
    _json.member("registerTime", 0);
    _json.nullMember("unregisterTime");
    _json.noElements("pausedRanges");
    _json.member("name", thread.name);
    _json.member("isMainThread", thread.isMain());
    _json.member("processName", thread.process);
    _json.member("pid", std::to_string(thread.pid));
    _json.member("tid", thread.tid);
    _json.member("showMarkersInTimeline", true);
    static const ThreadSamples::Thread kNoSamples;
    static const std::vector<FirefoxChart::Marker> kNoMarkers;
    _json.object("samples", [&] { writeSamples(thread.samples != nullptr ? *thread.samples : kNoSamples); });
    _json.object("markers", [&] {
      _chart.writeMarkers(_json, thread.markers != nullptr ? *thread.markers : kNoMarkers, _firstTime);
    });
    _json.endObject();
  }

  void writeSamples(const ThreadSamples::Thread& samples) {
    // The root of the tree is no stack.
    _json.column("stack", samples.nodes, [&](StackTree::Node node) { _json.value(node - 1); });
    _json.column("time", samples.times, [&](double time) { _json.milliseconds(time, _firstTime); });
    _json.nullMember("weight");
    _json.member("weightType", "samples");
    _json.length(samples.nodes.size());
  }

  void writeCounter(const FirefoxChart::Counter& counter) {
    const auto owner = std::find_if(_threads.begin(), _threads.end(),
                                    [&](const Thread& thread) { return thread.pid == counter.pid; });
    const bool isOwned = owner != _threads.end();
    _json.startObject();
    FirefoxChart::writeCounter(_json, counter, _firstTime);
    _json.member("pid", std::to_string(counter.pid));
    _json.member("mainThreadIndex", isOwned ? static_cast<std::uint64_t>(owner - _threads.begin()) : 0);
    _json.endObject();
  }

  JsonColumns _json;
  std::string _title;
  std::set<DocumentKind> _kinds;
  TextTable _strings;
  ThreadSamples _samples;
  FirefoxChart _chart{_strings};
  std::vector<Thread> _threads;
  double _firstTime = 0.0;
};

const ExportFormat format("firefox",
                          "processed profile for the Firefox Profiler, of a profile and a timechart",
                          {.profile = true, .timechart = true, .several = true},
                          [](OutputFile& output) -> std::unique_ptr<Exporter> {
                            return std::make_unique<Firefox>(output);
                          });

}  // namespace

}  // namespace zelkit
