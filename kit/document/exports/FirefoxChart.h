/// The markers and counters of a timechart in the processed profile of the Firefox Profiler.
#pragma once

#include <deque>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "document/DocumentVisitor.h"
#include "document/OnOffSeries.h"
#include "document/exports/ChartTrack.h"
#include "document/exports/JsonColumns.h"
#include "document/exports/TextTable.h"

namespace zelkit {

/// Takes the series of a timechart: what was on becomes markers of threads, values become counters.
class FirefoxChart : public DocumentVisitor {
 public:
  struct Marker {
    enum class Phase : int { kInstant, kInterval, kIntervalStart };

    std::uint32_t name = 0;
    Phase phase = Phase::kInstant;
    double start = 0.0;
    double end = 0.0;
    /// Index of the event that it shows, if it shows one.
    std::optional<std::uint32_t> event;
  };
  struct Thread {
    ChartTrack track;
    std::vector<Marker> markers;
  };
  struct Counter {
    std::string name;
    std::uint32_t pid = 0;
    std::vector<double> times;
    std::vector<double> values;
  };

  /// The names of markers are added to the strings, which must outlive the object.
  explicit FirefoxChart(TextTable& strings) : _strings(strings) {}

  void seriesStart(const SeriesHead& head) override;
  void point(double time, double value) override;
  void event(const SeriesEvent& event) override;
  void seriesEnd() override;

  /// In the order in which they came.
  const std::deque<Thread>& threads() const { return _threads; }
  const std::deque<Counter>& counters() const { return _counters; }
  /// Returns the first moment in seconds; the greatest number there is if there was none.
  double firstTime() const { return _firstTime; }

  /// Writes the list "markerSchema" of "meta".
  static void writeSchemas(JsonColumns& json);
  /// Writes the columns of a thread's table "markers", times from that first moment on.
  void writeMarkers(JsonColumns& json, const std::vector<Marker>& markers, double firstTime) const;
  /// Writes the members of a counter but for those that say whose it is.
  static void writeCounter(JsonColumns& json, const Counter& counter, double firstTime);

 private:
  Thread& threadOf(const ChartTrack& track);
  void add(Marker::Phase phase, double start, double end = 0.0);

  TextTable& _strings;
  double _firstTime = std::numeric_limits<double>::max();
  std::deque<Thread> _threads;
  std::map<std::pair<std::uint32_t, std::uint32_t>, Thread*> _threadByTrack;
  std::deque<Counter> _counters;
  /// Code and text of the events.
  std::vector<std::pair<std::int64_t, std::string>> _events;
  std::uint32_t _ownThreads = 0;

  /// The series that comes.
  std::string _type;
  std::uint32_t _label = 0;
  OnOffSeries _series;
  /// Null for a counter.
  Thread* _thread = nullptr;
};

}  // namespace zelkit
