#pragma once

#include <array>

#include "timechart/ChartSeries.h"
#include "timechart/ChartTime.h"

class PerfJSONWriter;

/// The series of one CPU: busy, frequency, and idle states.
class CPUChart {
 public:
  /// The series that a value belongs to.
  enum Kind { kBusy = 40, kFrequency = 41, kIdle = 42 };

  explicit CPUChart(int cpu) : _cpu(cpu) {}

  /// Adds a value; the frequency is in MHz. A kind below 40 is ignored, and every kind above 41 means kIdle:
  /// a value of 1 to 4 enters idle state value - 1, and 0 leaves the one entered last.
  void addValue(ChartTime time, int kind, int value);

  /// Returns the latest busy value, or 0.
  int getBusyState() const { return static_cast<int>(_busy.lastValue()); }

  /// Writes the entries of all non-empty series.
  void outCPUChart(PerfJSONWriter& writer) const;

 private:
  void addIdle(double time, int value);
  void outBusy(PerfJSONWriter& writer) const;
  void outFrequency(PerfJSONWriter& writer) const;
  void outIdle(PerfJSONWriter& writer, std::size_t state) const;

  int _cpu;
  int _lastIdle = -1;  ///< the idle state entered last; -1 for none
  ChartSeries _busy;
  ChartSeries _frequency;
  std::array<ChartSeries, 4> _idle;
};
