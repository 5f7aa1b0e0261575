#pragma once

#include <vector>

/// One sample of a chart.
struct ChartEntryS {
  double time;         ///< seconds relative to gtodAtStart
  unsigned int value;  ///< the series' value from this time on
};

/// A series of samples in order of arrival, until it is sorted for output.
class ChartSeries {
 public:
  void add(double time, unsigned int value) { _samples.push_back({time, value}); }
  /// Adds a sample that differs from the last one, or from 0.
  void addChange(double time, unsigned int value) {
    if (value != lastValue()) add(time, value);
  }
  bool empty() const { return _samples.empty(); }
  /// The value that arrived last, or 0.
  unsigned int lastValue() const { return _samples.empty() ? 0 : _samples.back().value; }

  /// By time; samples of one time keep their order.
  void sort();
  const std::vector<ChartEntryS>& samples() const { return _samples; }

 private:
  std::vector<ChartEntryS> _samples;
};
