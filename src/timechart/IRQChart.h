#pragma once

#include <cstdint>
#include <string>

#include "timechart/ArrivalList.h"
#include "timechart/ChartSeries.h"
#include "timechart/ChartTime.h"
#include "timechart/PerCpu.h"

class PerfJSONWriter;

/// The id of soft interrupt 0: hard and soft interrupts are in one table of charts.
inline constexpr int kFirstSoftInterrupt = 1000;

/// Returns the id of a soft interrupt's chart.
inline int softInterruptId(unsigned int vector) {
  return static_cast<int>(vector + static_cast<unsigned int>(kFirstSoftInterrupt));
}

/// The series of one interrupt: when it ran on each CPU.
class IRQChart {
 public:
  explicit IRQChart(int irq) : _irq(irq) {}

  /// Adds a value: 1 on entry, 0 on exit.
  void addValue(ChartTime time, int value, int cpu);

  /// Writes one entry for each CPU on which the interrupt ran.
  void outIRQChart(PerfJSONWriter& writer) const;

 private:
  /// A value of the interrupt. A recording may have a chart for every record, so a chart has one short list
  /// instead of a series for each CPU.
  struct Fact {
    double time;  ///< seconds relative to gtodAtStart
    int value;
    std::int8_t cpu;
  };

  void outCpu(PerfJSONWriter& writer, const std::string& name, int cpu, const ChartSamples& changes) const;

  int _irq;
  ArrivalList<Fact> _facts;
};
