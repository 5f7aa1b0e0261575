#include "timechart/GPUChart.h"

#include "json/PerfJSONWriter.h"
#include "timechart/ChartEntry.h"
#include "timechart/IssueKinds.h"

/// Tip and colours of one series; a null tip is left out.
struct GpuSeriesLook {
  const char* tip;
  ChartColours colours;
};

/// The common part of all entries of one kind: formats of dimension, device and, in the id, the series'
/// index; and two texts.
struct GpuEntryKind {
  const char* id;
  const char* name;
  const char* treeId;
  const char* type;
  const char* entryClass;
};

namespace {

constexpr std::array<GpuSeriesLook, 5> kPowerLooks = {{
    {"OFF", {"#d3d3d3", "#444444"}},
    {"ON", {"#ffffdc", "#555555"}},
    {"ON | AXI", {"#e0ffe0", "#005500"}},
    {"ON | CLK | AXI", {"#cd5c5c", "#cd5c5c"}},
    {"ON | CLK | AXI | IRQ", {"#8fbc8f", "#8fbc8f"}},
}};

constexpr GpuSeriesLook kFrequencyLook = {"MHz", {"#8fbc8f", "#8fbc8f"}};

constexpr std::array<GpuSeriesLook, 3> kInterruptLooks = {{
    {"IB1 Complete", {"#bfbf34", "#e6e6a3"}},
    {"RB Complete", {"#815223", "#d69e67"}},
    {nullptr, {"#812323", "#e6a3a3"}},
}};

constexpr GpuEntryKind kPowerEntry = {"gpu-%d-%d-p%d", "GPU-%dD%d Power State", "power_GPU-%dD%d_kgsl_root",
                                      "binary", "gpu:power"};
constexpr GpuEntryKind kFrequencyEntry = {"gpu-%d-%d-f", "GPU-%dD%d Frequency", "freq_GPU-%dD%d_kgsl_root",
                                          "bar", "gpu:freq"};
constexpr GpuEntryKind kInterruptEntry = {"gpu-%d-%d-q%d", "GPU-%dD%d IRQ", "irq_GPU-%dD%d_kgsl_root",
                                          "marker", "gpu:irq"};
constexpr GpuEntryKind kIssueEntry = {"gpu-%d-%d-i%d", "GPU-%dD%d Issue", "issue_GPU-%dD%d_kgsl_root",
                                      "marker", "gpu:issue"};

/// Returns the series of a status in the range of statuses that starts at `first`, or null.
template <std::size_t Kinds>
ChartSeries* seriesOf(std::array<ChartSeries, Kinds>& series, int status, int first) {
  const long long kind = static_cast<long long>(status) - first;
  return kind >= 0 && kind < static_cast<long long>(Kinds) ? &series[static_cast<std::size_t>(kind)]
                                                           : nullptr;
}

}  // namespace

void GPUChart::addStatus(ChartTime time, int status, unsigned int sub) {
  if (!time.isSelected()) return;
  if (ChartSeries* issue = seriesOf(_issue, status, kIssue); issue != nullptr) {
    issue->add(time.seconds(), issueValue(sub));
  } else if (ChartSeries* irq = seriesOf(_irqs, status, kInterrupt); irq != nullptr) {
    irq->add(time.seconds(), 1);
  } else if (status >= kPower && status < kPower + static_cast<int>(kPowerLooks.size())) {
    _powerState.add(time.seconds(), static_cast<unsigned int>(status - kPower));
  } else if (status == kFrequency) {
    _frequency.add(time.seconds(), sub);
  }
}

void GPUChart::outGPUChart(PerfJSONWriter& writer) const {
  const ChartSamples states = _powerState.inTimeOrder();
  for (std::size_t state = 0; state < kPowerLooks.size(); ++state) outPowerState(writer, state, states);
  outSteps(writer, kFrequencyEntry, 0, kFrequencyLook, _frequency.changes());
  for (std::size_t kind = 0; kind < _irqs.size(); ++kind)
    outMarkers(writer, kInterruptEntry, kind, kInterruptLooks[kind], _irqs[kind]);
  for (std::size_t kind = 0; kind < _issue.size(); ++kind)
    outMarkers(writer, kIssueEntry, kind, {kIssueKinds[kind].gpuTip, kIssueKinds[kind].colours},
               _issue[kind]);
}

/// A core is in one power state at a time, so entering one leaves the others.
void GPUChart::outPowerState(PerfJSONWriter& writer, std::size_t state, const ChartSamples& states) const {
  ChartSamples steps;
  for (const ChartEntryS& sample : states) addChange(steps, sample.time, sample.value == state ? 1 : 0);
  outSteps(writer, kPowerEntry, state, kPowerLooks[state], steps);
}

void GPUChart::outSteps(PerfJSONWriter& writer, const GpuEntryKind& kind, std::size_t index,
                        const GpuSeriesLook& look, const ChartSamples& samples) const {
  if (!samples.empty()) head(writer, kind, index, look).writeData(samples);
}

void GPUChart::outMarkers(PerfJSONWriter& writer, const GpuEntryKind& kind, std::size_t index,
                          const GpuSeriesLook& look, const ChartSeries& series) const {
  if (!series.empty()) head(writer, kind, index, look).writeData(series.inTimeOrder());
}

ChartEntry GPUChart::head(PerfJSONWriter& writer, const GpuEntryKind& kind, std::size_t index,
                          const GpuSeriesLook& look) const {
  ChartEntry entry(writer);
  entry.text("id", chartText(kind.id, _dimension, _device, static_cast<int>(index)));
  entry.text("name", chartText(kind.name, _dimension, _device))
      .text("treeId", chartText(kind.treeId, _dimension, _device));
  entry.text("type", kind.type).text("class", kind.entryClass).show(1);
  if (look.tip != nullptr) entry.text("tip", look.tip);
  entry.hints(look.colours);
  return entry;
}
