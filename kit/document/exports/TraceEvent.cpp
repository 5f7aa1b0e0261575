// The Trace Event format (Google's "Trace Event Format" document): what Perfetto's page and the browsers'
// Performance panel open. Tasks are threads of their process; cores, GPU and interrupts are threads of
// processes made for them.

#include <array>
#include <charconv>
#include <set>

#include "document/OnOffSeries.h"
#include "document/exports/ChartTrack.h"
#include "document/exports/ExportFormat.h"
#include "document/exports/JsonOutput.h"
#include "document/exports/WholeUnits.h"

namespace zelkit {

namespace {

std::int64_t microseconds(double seconds) {
  return wholeUnits(seconds, kMicrosecondsPerSecond);
}

/// Writes a timechart series by series. An event is put together as a text, of which a series makes most
/// once.
class TraceEvent : public Exporter, private DocumentVisitor {
 public:
  explicit TraceEvent(OutputFile& output) : _json(output) {
    _json.startObject();
    _json.member("displayTimeUnit", "ms");
    _json.key("traceEvents");
    _json.startArray();
  }

  ReadOutcome read(ByteSource& source) override { return readDocument(source, *this); }

  void finish() override {
    _json.endArray();
    _json.key("otherData");
    _json.startObject();
    _json.member("exporter", "zelkit");
    _json.endObject();
    _json.endObject();
    _json.flush();
  }

 private:
  void seriesStart(const SeriesHead& head) override {
    _head = head;
    _track = ChartTrack::of(head);
    if (_track.tid == 0) _track.tid = ++_ownThreads;
    _series = {};
    const std::string label = head.tip.empty() ? head.name : head.tip;
    const bool isCounter = head.type == "bar";
    _own = place(isCounter && label != head.name ? head.name + " " + label : label);
    _wakeUp = place("wake-up");
    nameTrack();
  }

  void point(double time, double value) override {
    if (_head.type == "bar") return counter(time, value);
    if (_head.type == "marker") return write("i", _own, time, R"(,"s":"t")");
    if (const auto interval = _series.point(time, value)) slice(interval->start, interval->end);
  }

  void event(const SeriesEvent& event) override {
    _text =
        _track.pid == ChartTrack::kMarkers ? R"(,"s":"g","args":{"code":)" : R"(,"s":"t","args":{"code":)";
    append(_text, event.code);
    _text += ",\"text\":" + quotedJson(event.arguments) + '}';
    write("i", place(event.name), event.time, _text);
  }

  /// A slice without an end is drawn to the end of the trace.
  void seriesEnd() override {
    if (_series.since()) write("B", _own, *_series.since());
  }

  void nameTrack() {
    if (_named.insert({_track.pid, 0}).second) metadata("process_name", 0, _track.process);
    // Counters have their own tracks, identified by name.
    if (_head.type != "bar" && _named.insert({_track.pid, _track.tid}).second)
      metadata("thread_name", _track.tid, _track.thread);
  }

  void metadata(const char* what, std::uint32_t tid, const std::string& name) {
    _json.startObject();
    _json.member("ph", "M");
    _json.member("name", what);
    _json.member("pid", _track.pid);
    _json.member("tid", tid);
    _json.key("args");
    _json.startObject();
    _json.member("name", validUtf8(name));
    _json.endObject();
    _json.endObject();
  }

  /// Returns the members that events of that name have in common in this series, and the key of their time.
  std::string place(std::string_view name) const {
    return "\"name\":" + quotedJson(name) + ",\"cat\":" + quotedJson(_head.chartClass) +
           ",\"pid\":" + std::to_string(_track.pid) + ",\"tid\":" + std::to_string(_track.tid) + ",\"ts\":";
  }

  template <typename Number>
  static void append(std::string& text, Number number) {
    std::array<char, 32> digits{};
    text.append(digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr);
  }

  /// Writes an event; `more` are its other members, each with a comma before it.
  void write(const char* phase, const std::string& place, double time, std::string_view more = {}) {
    _event = "{\"ph\":\"";
    _event += phase;
    _event += "\",";
    _event += place;
    append(_event, microseconds(time));
    _event += more;
    _event += '}';
    _json.raw(_event, rapidjson::kObjectType);
  }

  void slice(double start, double end) {
    _text = ",\"dur\":";
    append(_text, microseconds(end) - microseconds(start));
    write("X", _own, start, _text);
    if (isWaitForCpu()) wakeUp(start, end);
  }

  bool isWaitForCpu() const { return _head.id.starts_with("proc-") && _head.id.ends_with("-w"); }

  /// Draws an arrow from the moment when the task was woken to the run that starts when its wait ends.
  void wakeUp(double woken, double running) {
    _text = ",\"id\":";
    append(_text, ++_flows);
    write("s", _wakeUp, woken, _text);
    _text += R"(,"bp":"e")";
    write("f", _wakeUp, running, _text);
  }

  void counter(double time, double value) {
    _text = R"(,"args":{"value":)";
    append(_text, value);
    _text += '}';
    write("C", _own, time, _text);
  }

  JsonOutput _json;
  SeriesHead _head;
  ChartTrack _track;
  OnOffSeries _series;
  /// What the series' own events and its wake-ups have in common.
  std::string _own;
  std::string _wakeUp;
  std::string _text;
  std::string _event;
  std::uint32_t _flows = 0;
  std::uint32_t _ownThreads = 0;
  std::set<std::pair<std::uint32_t, std::uint32_t>> _named;
};

const ExportFormat format("trace-event", "Trace Event JSON for Perfetto and the Performance panel",
                          {.timechart = true}, [](OutputFile& output) -> std::unique_ptr<Exporter> {
                            return std::make_unique<TraceEvent>(output);
                          });

}  // namespace

}  // namespace zelkit
