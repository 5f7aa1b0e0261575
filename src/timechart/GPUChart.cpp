#include "timechart/GPUChart.h"

#include "json/PerfJSONWriter.h"
#include "run/TimeBase.h"
#include "timechart/ChartEntry.h"
#include "timechart/IssueValue.h"

namespace {

/// Null where a kind has no tip.
struct SeriesLook {
  const char* tip;
  ChartColours colours;
};

constexpr std::array<SeriesLook, 5> kPowerLooks = {{
    {"OFF", {"#d3d3d3", "#444444"}},
    {"ON", {"#ffffdc", "#555555"}},
    {"ON | AXI", {"#e0ffe0", "#005500"}},
    {"ON | CLK | AXI", {"#cd5c5c", "#cd5c5c"}},
    {"ON | CLK | AXI | IRQ", {"#8fbc8f", "#8fbc8f"}},
}};

constexpr std::array<SeriesLook, 3> kInterruptLooks = {{
    {"IB1 Complete", {"#bfbf34", "#e6e6a3"}},
    {"RB Complete", {"#815223", "#d69e67"}},
    {nullptr, {"#812323", "#e6a3a3"}},
}};

constexpr std::array<SeriesLook, 4> kIssueLooks = {{
    {nullptr, {"#66ccff", "#66ccff"}},
    {"GL", {"#00ff00", "#00ff00"}},
    {"CL", {"#993CF3", "#993CF3"}},
    {"C2D", {"#f660ab", "#f660ab"}},
}};

/// The series of a range of statuses that the status names, or null.
template <std::size_t Kinds>
ChartSeries* seriesOf(std::array<ChartSeries, Kinds>& series, int status, int first) {
  const long long kind = static_cast<long long>(status) - first;
  return kind >= 0 && kind < static_cast<long long>(Kinds) ? &series[static_cast<std::size_t>(kind)]
                                                           : nullptr;
}

/// Ends an entry's head the way all entries of a GPU do.
void finishHead(ChartEntry& entry, const SeriesLook& look) {
  entry.show(1);
  if (look.tip != nullptr) entry.text("tip", look.tip);
  entry.hints(look.colours);
}

}  // namespace

void GPUChart::addStatus(unsigned long long time, int status, unsigned int sub) {
  const auto x = selectedTime(doTimeConversion(time));
  if (!x) return;
  if (ChartSeries* issue = seriesOf(_issue, status, kIssue); issue != nullptr) {
    issue->add(*x, issueValue(sub));
  } else if (ChartSeries* irq = seriesOf(_irqs, status, kInterrupt); irq != nullptr) {
    irq->add(*x, 1);
  } else if (seriesOf(_power, status, kPower) != nullptr) {
    enterPowerState(*x, static_cast<std::size_t>(status - kPower));
  } else if (status == kFrequency) {
    _frequency.add(*x, sub);
  }
}

void GPUChart::enterPowerState(double time, std::size_t state) {
  _power[state].add(time, 1);
  for (std::size_t other = 0; other < _power.size(); ++other)
    if (other != state) _power[other].add(time, 0);
}

void GPUChart::sort() {
  for (ChartSeries& series : _power) series.sort();
  for (ChartSeries& series : _issue) series.sort();
  for (ChartSeries& series : _irqs) series.sort();
  _frequency.sort();
}

void GPUChart::outGPUChart(PerfJSONWriter& writer) {
  sort();
  for (std::size_t state = 0; state < _power.size(); ++state) outPower(writer, state);
  outFrequency(writer);
  for (std::size_t kind = 0; kind < _irqs.size(); ++kind) outInterrupt(writer, kind);
  for (std::size_t kind = 0; kind < _issue.size(); ++kind) outIssue(writer, kind);
}

void GPUChart::outPower(PerfJSONWriter& writer, std::size_t state) const {
  if (!hasChanges(_power[state])) return;
  ChartEntry entry(writer);
  entry.text("id", chartText("gpu-%d-%d-p%d", _dimension, _device, static_cast<int>(state)));
  entry.text("name", chartText("GPU-%dD%d Power State", _dimension, _device));
  entry.text("treeId", chartText("power_GPU-%dD%d_kgsl_root", _dimension, _device));
  entry.text("type", "binary").text("class", "gpu:power");
  finishHead(entry, kPowerLooks[state]);
  entry.writeChanges(_power[state]);
}

void GPUChart::outFrequency(PerfJSONWriter& writer) const {
  if (!hasChanges(_frequency)) return;
  ChartEntry entry(writer);
  entry.text("id", chartText("gpu-%d-%d-f", _dimension, _device));
  entry.text("name", chartText("GPU-%dD%d Frequency", _dimension, _device));
  entry.text("treeId", chartText("freq_GPU-%dD%d_kgsl_root", _dimension, _device));
  entry.text("type", "bar").text("class", "gpu:freq");
  finishHead(entry, {"MHz", {"#8fbc8f", "#8fbc8f"}});
  entry.writeChanges(_frequency);
}

void GPUChart::outInterrupt(PerfJSONWriter& writer, std::size_t kind) const {
  if (_irqs[kind].empty()) return;
  ChartEntry entry(writer);
  entry.text("id", chartText("gpu-%d-%d-q%d", _dimension, _device, static_cast<int>(kind)));
  entry.text("name", chartText("GPU-%dD%d IRQ", _dimension, _device));
  entry.text("treeId", chartText("irq_GPU-%dD%d_kgsl_root", _dimension, _device));
  entry.text("type", "marker").text("class", "gpu:irq");
  finishHead(entry, kInterruptLooks[kind]);
  entry.writeAll(_irqs[kind]);
}

void GPUChart::outIssue(PerfJSONWriter& writer, std::size_t kind) const {
  if (_issue[kind].empty()) return;
  ChartEntry entry(writer);
  entry.text("id", chartText("gpu-%d-%d-i%d", _dimension, _device, static_cast<int>(kind)));
  entry.text("name", chartText("GPU-%dD%d Issue", _dimension, _device));
  entry.text("treeId", chartText("issue_GPU-%dD%d_kgsl_root", _dimension, _device));
  entry.text("type", "marker").text("class", "gpu:issue");
  finishHead(entry, kIssueLooks[kind]);
  entry.writeAll(_issue[kind]);
}
