#pragma once

#include <array>

#include "timechart/ChartSeries.h"
#include "timechart/ChartTime.h"

class ChartEntry;
class PerfJSONWriter;
struct GpuEntryKind;
struct GpuSeriesLook;

/// The series of one GPU core of the kgsl driver: power states, frequency, interrupts and the work issued to
/// it.
class GPUChart {
 public:
  /// Facts about a core. kIssue, kInterrupt and kPower are the first numbers of ranges.
  enum Status { kIssue = 10, kInterrupt = 17, kPower = 30, kFrequency = 35 };

  GPUChart(int dimension, int device) : _dimension(dimension), _device(device) {}

  /// Adds a fact. `sub` is the frequency in MHz, or 1 for an issue that ends a frame. An unknown status is
  /// ignored.
  void addStatus(ChartTime time, int status, unsigned int sub);

  /// Writes the entries of all non-empty series.
  void outGPUChart(PerfJSONWriter& writer) const;

 private:
  void outPowerState(PerfJSONWriter& writer, std::size_t state, const ChartSamples& states) const;
  /// Writes a change-only series, unless it is empty.
  void outSteps(PerfJSONWriter& writer, const GpuEntryKind& kind, std::size_t index,
                const GpuSeriesLook& look, const ChartSamples& samples) const;
  /// Writes a series in which every sample counts, unless it is empty.
  void outMarkers(PerfJSONWriter& writer, const GpuEntryKind& kind, std::size_t index,
                  const GpuSeriesLook& look, const ChartSeries& series) const;
  ChartEntry head(PerfJSONWriter& writer, const GpuEntryKind& kind, std::size_t index,
                  const GpuSeriesLook& look) const;

  int _dimension;
  int _device;
  ChartSeries _powerState;  ///< the numbers of the states entered
  std::array<ChartSeries, 4> _issue;
  std::array<ChartSeries, 3> _irqs;
  ChartSeries _frequency;
};
