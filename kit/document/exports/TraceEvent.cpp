// The Trace Event format (Google's "Trace Event Format" document): opened by Perfetto's page and the
// browsers' Performance panel. Tasks are threads of their process; cores, GPU and interrupts are threads of
// synthetic processes.

#include <cmath>
#include <optional>
#include <set>

#include "document/exports/ChartTrack.h"
#include "document/exports/ExportFormat.h"
#include "document/exports/JsonOutput.h"

namespace zelkit {

namespace {

constexpr double kMicrosecondsPerSecond = 1e6;

class TraceEvent : public Exporter {
 public:
  explicit TraceEvent(OutputFile& output) : _json(output) {
    _json.startObject();
    _json.member("displayTimeUnit", "ms");
    _json.key("traceEvents");
    _json.startArray();
  }

  void seriesStart(const SeriesHead& head) override {
    _head = head;
    _track = ChartTrack::of(head);
    if (_track.tid == 0) _track.tid = ++_ownThreads;
    _label = validUtf8(head.tip.empty() ? head.name : head.tip);
    _class = validUtf8(head.chartClass);
    _start.reset();
    nameTrack();
  }

  void point(double time, double value) override {
    if (_head.type == "bar") return counter(time, value);
    if (_head.type == "marker") return instant(time);
    if (value != 0.0 && !_start) _start = time;
    if (value == 0.0 && _start) slice(time);
  }

  void event(const SeriesEvent& event) override {
    begin("i", validUtf8(event.name), event.time);
    _json.member("s", _track.pid == ChartTrack::kMarkers ? "g" : "t");
    _json.key("args");
    _json.startObject();
    _json.member("code", event.code);
    _json.member("text", validUtf8(event.arguments));
    _json.endObject();
    _json.endObject();
  }

  /// A series that is on at its end has no closing point; a slice without an end is drawn to the end of the
  /// trace.
  void seriesEnd() override {
    if (!_start) return;
    begin("B", _label, *_start);
    _json.endObject();
  }

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
  void nameTrack() {
    if (_named.insert({_track.pid, 0}).second) metadata("process_name", 0, validUtf8(_track.process));
    // Counters have their own tracks, identified by name.
    if (_head.type != "bar" && _named.insert({_track.pid, _track.tid}).second)
      metadata("thread_name", _track.tid, validUtf8(_track.thread));
  }

  void metadata(const char* what, std::uint32_t tid, const std::string& name) {
    _json.startObject();
    _json.member("ph", "M");
    _json.member("name", what);
    _json.member("pid", _track.pid);
    _json.member("tid", tid);
    _json.key("args");
    _json.startObject();
    _json.member("name", name);
    _json.endObject();
    _json.endObject();
  }

  /// Opens an event object; the caller adds members and closes it.
  void begin(const char* phase, const std::string& name, double time) {
    _json.startObject();
    _json.member("ph", phase);
    _json.member("name", name);
    _json.member("cat", _class);
    _json.member("pid", _track.pid);
    _json.member("tid", _track.tid);
    _json.member("ts", microseconds(time));
  }

  static double microseconds(double seconds) {
    // Points have a resolution of microseconds; smaller digits are parsing errors.
    return std::round(seconds * kMicrosecondsPerSecond);
  }

  void slice(double end) {
    begin("X", _label, *_start);
    _json.member("dur", microseconds(end) - microseconds(*_start));
    _json.endObject();
    if (isWaitForCpu()) wakeUp(*_start, end);
    _start.reset();
  }

  bool isWaitForCpu() const { return _head.id.starts_with("proc-") && _head.id.ends_with("-w"); }

  /// Draws an arrow from the moment when the task was woken to the run that starts when its wait ends.
  void wakeUp(double woken, double running) {
    ++_flows;
    begin("s", "wake-up", woken);
    _json.member("id", _flows);
    _json.endObject();
    begin("f", "wake-up", running);
    _json.member("id", _flows);
    _json.member("bp", "e");
    _json.endObject();
  }

  void counter(double time, double value) {
    begin("C", _label == _head.name ? _label : validUtf8(_head.name) + " " + _label, time);
    _json.key("args");
    _json.startObject();
    _json.member("value", value);
    _json.endObject();
    _json.endObject();
  }

  void instant(double time) {
    begin("i", _label, time);
    _json.member("s", "t");
    _json.endObject();
  }

  JsonOutput _json;
  SeriesHead _head;
  ChartTrack _track;
  std::string _label;
  std::string _class;
  std::optional<double> _start;
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
