#pragma once

#include <array>

#include "timechart/ChartSeries.h"

class PerfJSONWriter;

/// For one CPU: when it was busy, at what frequency it ran, and which idle state it was in.
class CPUChart {
 public:
  /// What a value is about.
  enum Kind { kBusy = 40, kFrequency = 41, kIdle = 42 };

  explicit CPUChart(int cpu) : _cpu(cpu) {}

  /// Adds a value; the frequency is in MHz. A kind below 40 stores nothing, one above 41 is about idling:
  /// value 1 to 4 enters the idle state below it, 0 leaves the one last entered.
  void addValue(unsigned long long nanoseconds, int kind, int value);

  /// The busy value that arrived last, or 0.
  int getBusyState() const { return static_cast<int>(_busy.lastValue()); }

  void outCPUChart(PerfJSONWriter& writer) const;

 private:
  void addIdle(double time, int value);
  void outBusy(PerfJSONWriter& writer) const;
  void outFrequency(PerfJSONWriter& writer) const;
  void outIdle(PerfJSONWriter& writer, std::size_t state) const;

  int _cpu;
  int _lastIdle = -1;  ///< the idle series last entered; -1 for none
  ChartSeries _busy;
  ChartSeries _frequency;
  std::array<ChartSeries, 4> _idle;
};
