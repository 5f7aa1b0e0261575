#include "document/exports/FirefoxChart.h"

#include <algorithm>

#include "document/exports/FirefoxFrames.h"

namespace zelkit {

namespace {

/// Where the viewer shows markers.
constexpr const char* kPlaces[] = {"marker-chart", "marker-table", "timeline-overview"};

}  // namespace

void FirefoxChart::seriesStart(const SeriesHead& head) {
  _type = head.type;
  _series = {};
  ChartTrack track = ChartTrack::of(head);
  if (track.tid == 0) track.tid = ++_ownThreads;
  if (_type == "bar") {
    _thread = nullptr;
    const std::string name = head.tip.empty() ? head.name : head.name + " " + head.tip;
    _counters.push_back({validUtf8(name), track.pid, {}, {}});
  } else {
    _thread = &threadOf(track);
    _label = _strings.indexOf(validUtf8(head.tip.empty() ? head.name : head.tip));
  }
}

FirefoxChart::Thread& FirefoxChart::threadOf(const ChartTrack& track) {
  Thread*& thread = _threadByTrack[{track.pid, track.tid}];
  if (thread == nullptr) thread = &_threads.emplace_back(Thread{track, {}});
  return *thread;
}

void FirefoxChart::add(Marker::Phase phase, double start, double end) {
  _thread->markers.push_back({_label, phase, start, end, {}});
}

void FirefoxChart::point(double time, double value) {
  _firstTime = std::min(_firstTime, time);
  if (_thread == nullptr) {
    _counters.back().times.push_back(time);
    _counters.back().values.push_back(value);
  } else if (_type == "marker") {
    add(Marker::Phase::kInstant, time);
  } else if (const auto interval = _series.point(time, value)) {
    add(Marker::Phase::kInterval, interval->start, interval->end);
  }
}

void FirefoxChart::event(const SeriesEvent& event) {
  if (_thread == nullptr) return;
  _firstTime = std::min(_firstTime, event.time);
  const auto index = static_cast<std::uint32_t>(_events.size());
  _thread->markers.push_back(
      {_strings.indexOf(validUtf8(event.name)), Marker::Phase::kInstant, event.time, 0.0, index});
  _events.emplace_back(event.code, validUtf8(event.arguments));
}

void FirefoxChart::seriesEnd() {
  if (_series.since()) add(Marker::Phase::kIntervalStart, *_series.since());
}

void FirefoxChart::writeSchemas(JsonColumns& json) {
  using Field = std::pair<const char*, const char*>;
  const std::pair<const char*, std::vector<Field>> schemas[] = {
      {"state", {}}, {"event", {{"text", "string"}, {"code", "integer"}}}};
  json.column("markerSchema", schemas, [&](const auto& schema) {
    json.startObject();
    json.member("name", schema.first);
    json.column("display", kPlaces, [&](const char* place) { json.value(place); });
    json.column("fields", schema.second, [&](const Field& field) {
      json.startObject();
      json.member("key", field.first);
      json.member("label", field.first);
      json.member("format", field.second);
      json.endObject();
    });
    json.endObject();
  });
}

void FirefoxChart::writeMarkers(JsonColumns& json, const std::vector<Marker>& markers,
                                double firstTime) const {
  json.column("data", markers, [&](const Marker& marker) {
    if (!marker.event) return json.raw(R"({"type":"state"})", rapidjson::kObjectType);
    const auto& [code, text] = _events[*marker.event];
    json.startObject();
    json.member("type", "event");
    json.member("code", code);
    json.member("text", text);
    json.endObject();
  });
  json.column("name", markers, [&](const Marker& marker) { json.value(marker.name); });
  json.column("startTime", markers,
              [&](const Marker& marker) { json.milliseconds(marker.start, firstTime); });
  json.column("endTime", markers, [&](const Marker& marker) {
    marker.phase == Marker::Phase::kInterval ? json.milliseconds(marker.end, firstTime) : json.null();
  });
  json.column("phase", markers, [&](const Marker& marker) { json.value(static_cast<int>(marker.phase)); });
  json.constant("category", markers, static_cast<int>(FirefoxCategory::kOther));
  json.length(markers.size());
}

void FirefoxChart::writeCounter(JsonColumns& json, const Counter& counter, double firstTime) {
  json.member("name", counter.name);
  json.member("category", "zelkit");
  json.member("description", counter.name);
  json.object("samples", [&] {
    json.column("time", counter.times, [&](double time) { json.milliseconds(time, firstTime); });
    // The viewer sums the values, so each sample is the difference from the previous one.
    double before = 0.0;
    json.column("count", counter.values, [&](double value) {
      json.value(value - before);
      before = value;
    });
    json.length(counter.times.size());
  });
  json.object("display", [&] {
    json.member("graphType", "line-accumulated");
    json.member("unit", "");
    json.member("color", "blue");
    json.nullMember("markerSchemaLocation");
    json.member("sortWeight", 50);
    json.member("label", counter.name);
  });
}

}  // namespace zelkit
