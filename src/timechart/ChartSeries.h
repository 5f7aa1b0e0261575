#pragma once

#include <vector>

#include "timechart/ArrivalList.h"

/// One sample of a chart.
struct ChartEntryS {
  double time;         ///< seconds relative to gtodAtStart
  unsigned int value;  ///< the series' value from this time on
};

/// The order in which all series are written: true if `a` comes earlier. Sorts by it are stable.
inline bool compareChartEntries(ChartEntryS a, ChartEntryS b) {
  return a.time < b.time;
}

/// Samples in the order in which they are written.
using ChartSamples = std::vector<ChartEntryS>;

/// Adds a sample if it differs from the one before it, or as the first from 0.
inline void addChange(ChartSamples& samples, double time, unsigned int value) {
  if (value != (samples.empty() ? 0 : samples.back().value)) samples.push_back({time, value});
}

/// A series of samples in order of arrival.
class ChartSeries {
 public:
  void add(double time, unsigned int value) { _samples.add({time, value}); }
  bool empty() const { return _samples.empty(); }
  /// The value that arrived last, or 0.
  unsigned int lastValue() const { return _samples.empty() ? 0 : _samples.last().value; }

  /// Returns the samples in order of time; those of one time keep their order.
  ChartSamples inTimeOrder() const;
  /// Returns those of them that change the value, which is 0 before the first.
  ChartSamples changes() const;

 private:
  ArrivalList<ChartEntryS> _samples;
};
