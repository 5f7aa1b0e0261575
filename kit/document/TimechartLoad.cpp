#include "document/TimechartLoad.h"

#include <algorithm>

namespace zelkit {

TimechartLoad::Use TimechartLoad::useOf(const SeriesHead& head) {
  if (head.chartClass == "cpu:busy") return Use::kCore;
  // Task 0 is the idle task.
  if (head.id.starts_with("proc-0-")) return Use::kNone;
  if (head.chartClass == "proc:running") return Use::kRunning;
  if (head.chartClass != "proc:wait") return Use::kNone;
  return head.id.ends_with("-d")   ? Use::kWaitForInput
         : head.id.ends_with("-g") ? Use::kWaitForGpu
                                   : Use::kWaitForCpu;
}

void TimechartLoad::seriesStart(const SeriesHead& head) {
  _series = {};
  _series.use = useOf(head);
  if (_series.use == Use::kNone) return;
  if (_series.use == Use::kCore) {
    _series.owner = _cores.size();
    _cores.push_back({head.name, 0.0});
    return;
  }
  _series.owner = taskNamed(head);
  _series.what = head.tip;
}

/// A task has one series for each core that it ran on, and some for its waits.
std::size_t TimechartLoad::taskNamed(const SeriesHead& head) {
  const auto [place, isNew] = _taskByName.try_emplace(head.name, _tasks.size());
  if (isNew) _tasks.push_back({head.name});
  return place->second;
}

void TimechartLoad::point(double time, double value) {
  widen(time);
  if (_series.use == Use::kNone) return;
  if (const auto interval = _series.state.point(time, value)) add(_series, *interval);
}

void TimechartLoad::seriesEnd() {
  if (_series.state.since()) _open.push_back(_series);
}

void TimechartLoad::finish() {
  for (const Series& series : _open) add(series, {*series.state.since(), _lastTime});
  _open.clear();
}

void TimechartLoad::widen(double time) {
  _firstTime = _any ? std::min(_firstTime, time) : time;
  _lastTime = _any ? std::max(_lastTime, time) : time;
  _any = true;
}

void TimechartLoad::add(const Series& series, const OnOffSeries::Interval& interval) {
  using Sum = double Task::*;
  static constexpr Sum kSums[] = {
      nullptr, nullptr, &Task::running, &Task::waitingForCpu, &Task::waitingForInput, &Task::waitingForGpu};
  const double length = interval.end - interval.start;
  if (series.use == Use::kCore) {
    _cores[series.owner].busy += length;
    return;
  }
  _tasks[series.owner].*kSums[static_cast<std::size_t>(series.use)] += length;
  if (series.use != Use::kRunning) addWait(series, interval);
}

void TimechartLoad::addWait(const Series& series, const OnOffSeries::Interval& interval) {
  const auto isLonger = [](const Wait& left, const Wait& right) { return left.length > right.length; };
  const double length = interval.end - interval.start;
  if (_waits.size() == _mostWaits && (_waits.empty() || _waits.back().length >= length)) return;
  Wait wait{_tasks[series.owner].name, series.what, interval.start, length};
  _waits.insert(std::upper_bound(_waits.begin(), _waits.end(), wait, isLonger), std::move(wait));
  if (_waits.size() > _mostWaits) _waits.pop_back();
}

std::vector<TimechartLoad::Task> TimechartLoad::tasks(std::size_t most) const {
  std::vector<Task> ranked = _tasks;
  std::stable_sort(ranked.begin(), ranked.end(),
                   [](const Task& left, const Task& right) { return left.running > right.running; });
  ranked.resize(std::min(ranked.size(), most));
  return ranked;
}

}  // namespace zelkit
