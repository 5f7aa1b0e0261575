#pragma once

#include <string>

#include "timechart/ChartSeries.h"
#include "timechart/PerCpu.h"

class PerfJSONWriter;

/// Soft interrupts share the charts with hard ones; their ids begin here.
inline constexpr int kFirstSoftInterrupt = 1000;

/// The id under which a soft interrupt's vector is charted.
inline int softInterruptId(unsigned int vector) {
  return static_cast<int>(vector + static_cast<unsigned int>(kFirstSoftInterrupt));
}

/// When one interrupt ran, and on which CPU.
class IRQChart {
 public:
  explicit IRQChart(int irq) : _irq(irq) {}

  /// Adds a value: 1 on entry, 0 on exit.
  void addValue(unsigned long long nanoseconds, int value, int cpu);

  void outIRQChart(PerfJSONWriter& writer) const;

 private:
  void outCpu(PerfJSONWriter& writer, const std::string& name, int cpu) const;

  int _irq;
  PerCpu<ChartSeries> _series;
};
