#pragma once

#include <array>

#include "timechart/ChartSeries.h"

class PerfJSONWriter;

/// For one GPU core of the kgsl driver: its power state, its frequency, its interrupts and the work issued to
/// it.
class GPUChart {
 public:
  /// Facts about a core. Issues, interrupts and power states are ranges of several kinds, counted from these.
  enum Status { kIssue = 10, kInterrupt = 17, kPower = 30, kFrequency = 35 };

  GPUChart(int dimension, int device) : _dimension(dimension), _device(device) {}

  /// Time in nanoseconds. `sub` is the frequency in MHz, or 1 for an issue that ends a frame.
  /// An unknown status stores nothing.
  void addStatus(unsigned long long time, int status, unsigned int sub);

  void outGPUChart(PerfJSONWriter& writer);

 private:
  void enterPowerState(double time, std::size_t state);
  void sort();
  void outPower(PerfJSONWriter& writer, std::size_t state) const;
  void outFrequency(PerfJSONWriter& writer) const;
  void outInterrupt(PerfJSONWriter& writer, std::size_t kind) const;
  void outIssue(PerfJSONWriter& writer, std::size_t kind) const;

  int _dimension;
  int _device;
  std::array<ChartSeries, 5> _power;
  std::array<ChartSeries, 4> _issue;
  std::array<ChartSeries, 3> _irqs;
  ChartSeries _frequency;
};
