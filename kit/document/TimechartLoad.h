/// Load of cores and tasks in a timechart: running times and the longest waits.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "document/DocumentVisitor.h"
#include "document/OnOffSeries.h"

namespace zelkit {

/// Adds up the series of a timechart document. Times are seconds.
class TimechartLoad : public DocumentVisitor {
 public:
  struct Task {
    std::string name;
    double running = 0.0;
    double waitingForCpu = 0.0;
    double waitingForInput = 0.0;
    double waitingForGpu = 0.0;
  };
  struct Wait {
    std::string task;
    /// What the task waited for, from the series: "Waiting for I/O".
    std::string what;
    double start = 0.0;
    double length = 0.0;
  };
  struct Core {
    std::string name;
    double busy = 0.0;
  };

  /// Keeps at most `mostWaits` of the longest waits.
  explicit TimechartLoad(std::size_t mostWaits) : _mostWaits(mostWaits) {}

  void seriesStart(const SeriesHead& head) override;
  void point(double time, double value) override;
  void event(const SeriesEvent& event) override { widen(event.time); }
  void seriesEnd() override;

  /// To be called after the document was read: series that are still on last until the last point of the
  /// document.
  void finish();

  /// Returns the seconds from the first point of the document to the last one.
  double duration() const { return _lastTime > _firstTime ? _lastTime - _firstTime : 0.0; }
  /// Returns the cores in the order of the document.
  const std::vector<Core>& cores() const { return _cores; }
  /// Returns at most `most` tasks, the longest running first.
  std::vector<Task> tasks(std::size_t most) const;
  /// Returns the waits, the longest first.
  const std::vector<Wait>& waits() const { return _waits; }

 private:
  /// What the time of a series is added to; determined by its id.
  enum class Use { kNone, kCore, kRunning, kWaitForCpu, kWaitForInput, kWaitForGpu };
  struct Series {
    Use use = Use::kNone;
    /// Index of the core or task.
    std::size_t owner = 0;
    std::string what;
    OnOffSeries state;
  };

  static Use useOf(const SeriesHead& head);
  std::size_t taskNamed(const SeriesHead& head);
  void widen(double time);
  void add(const Series& series, const OnOffSeries::Interval& interval);
  void addWait(const Series& series, const OnOffSeries::Interval& interval);

  std::size_t _mostWaits;
  Series _series;
  std::vector<Series> _open;
  std::vector<Core> _cores;
  std::vector<Task> _tasks;
  std::map<std::string, std::size_t> _taskByName;
  std::vector<Wait> _waits;
  bool _any = false;
  double _firstTime = 0.0;
  double _lastTime = 0.0;
};

}  // namespace zelkit
