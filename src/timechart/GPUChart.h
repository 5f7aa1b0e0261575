#pragma once

#include <array>

#include "timechart/ChartSeries.h"

class ChartEntry;
class PerfJSONWriter;
struct GpuEntryKind;
struct GpuSeriesLook;

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
  void outPowerState(PerfJSONWriter& writer, std::size_t state, const ChartSamples& states) const;
  /// A change-only series, unless it never leaves 0.
  void outSteps(PerfJSONWriter& writer, const GpuEntryKind& kind, std::size_t index,
                const GpuSeriesLook& look, const ChartSamples& samples) const;
  /// A series of which every sample counts, unless it is empty.
  void outMarkers(PerfJSONWriter& writer, const GpuEntryKind& kind, std::size_t index,
                  const GpuSeriesLook& look, const ChartSeries& series) const;
  ChartEntry head(PerfJSONWriter& writer, const GpuEntryKind& kind, std::size_t index,
                  const GpuSeriesLook& look) const;

  int _dimension;
  int _device;
  ChartSeries _powerState;  ///< the states entered, by number
  std::array<ChartSeries, 4> _issue;
  std::array<ChartSeries, 3> _irqs;
  ChartSeries _frequency;
};
