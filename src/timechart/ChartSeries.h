#pragma once

#include <vector>

#include "timechart/ArrivalList.h"

/// One sample of a chart.
struct ChartEntryS {
  // For emplace_back: a copy of a sample waits until both of its parts are in memory.
  ChartEntryS(double time_, unsigned int value_) : time(time_), value(value_) {}

  double time;         ///< seconds relative to gtodAtStart
  unsigned int value;  ///< the series' value from this time on
};

/// Returns whether `a` is earlier than `b`: the order in which series are written. Sorts by it are stable.
inline bool compareChartEntries(ChartEntryS a, ChartEntryS b) {
  return a.time < b.time;
}

/// Samples in the order in which they are written.
using ChartSamples = std::vector<ChartEntryS>;

/// Appends a sample if its value differs from that of the last one, or from 0 if it is the first.
inline void addChange(ChartSamples& samples, double time, unsigned int value) {
  if (value != (samples.empty() ? 0 : samples.back().value)) samples.emplace_back(time, value);
}

/// A series of samples in order of arrival.
class ChartSeries {
 public:
  void add(double time, unsigned int value) { _samples.add({time, value}); }
  bool empty() const { return _samples.empty(); }
  /// Returns the latest value, or 0.
  unsigned int lastValue() const { return _samples.empty() ? 0 : _samples.last().value; }

  /// Returns the samples in order of time; those of one time keep their order.
  ChartSamples inTimeOrder() const;
  /// Returns the samples, in order of time, that change the value, which is 0 before the first.
  ChartSamples changes() const;

 private:
  ArrivalList<ChartEntryS> _samples;
};
