#include "timechart/CPUChart.h"

#include "json/PerfJSONWriter.h"
#include "timechart/ChartEntry.h"

namespace {

struct IdleState {
  const char* tip;
  ChartColours colours;
};

constexpr std::array<IdleState, 4> kIdleStates = {{
    {"Wait For Interrupt", {"#ffffdc", "#555555"}},
    {"Retention", {"#e0ffe0", "#005500"}},
    {"Standalone Power Collapse", {"#cd5c5c", "#cd5c5c"}},
    {"Power Collapse", {"#8fbc8f", "#8fbc8f"}},
}};

/// Writes the part that all entries of a CPU have at the end.
void finish(ChartEntry& entry, ChartColours colours, const ChartSeries& series) {
  entry.hints(colours).writeData(series.changes());
}

}  // namespace

void CPUChart::addValue(ChartTime time, int kind, int value) {
  if (!time.isSelected() || kind < kBusy) return;
  if (kind == kBusy) {
    _busy.add(time.seconds(), static_cast<unsigned int>(value));
  } else if (kind == kFrequency) {
    _frequency.add(time.seconds(), static_cast<unsigned int>(value));
  } else {
    addIdle(time.seconds(), value);
  }
}

void CPUChart::addIdle(double time, int value) {
  if (value == 0 && _lastIdle != -1) {
    _idle[static_cast<std::size_t>(_lastIdle)].add(time, 0);
  } else if (value >= 1 && value <= static_cast<int>(_idle.size())) {
    _lastIdle = value - 1;
    _idle[static_cast<std::size_t>(_lastIdle)].add(time, 1);
  }
}

void CPUChart::outCPUChart(PerfJSONWriter& writer) const {
  outBusy(writer);
  outFrequency(writer);
  for (std::size_t state = 0; state < _idle.size(); ++state) outIdle(writer, state);
}

void CPUChart::outBusy(PerfJSONWriter& writer) const {
  if (_busy.empty()) return;
  ChartEntry entry(writer);
  entry.text("id", chartText("cpu-%d-b", _cpu)).text("name", chartText("CPU %d Busy", _cpu));
  entry.text("treeId", chartText("b_%d_cpu_root", _cpu))
      .text("type", "binary")
      .text("class", "cpu:busy")
      .show(1);
  finish(entry, cpuColours(_cpu), _busy);
}

void CPUChart::outFrequency(PerfJSONWriter& writer) const {
  if (_frequency.empty()) return;
  ChartEntry entry(writer);
  entry.text("id", chartText("cpu-%d-f", _cpu)).text("name", chartText("CPU %d Frequency", _cpu));
  entry.text("treeId", chartText("f_%d_cpu_root", _cpu))
      .text("type", "bar")
      .text("class", "cpu:freq")
      .show(1);
  entry.text("tip", "MHz");
  finish(entry, cpuColours(_cpu), _frequency);
}

void CPUChart::outIdle(PerfJSONWriter& writer, std::size_t state) const {
  const ChartSeries& series = _idle[state];
  if (series.empty()) return;
  ChartEntry entry(writer);
  entry.text("id", chartText("cpu-%d-s-%d", _cpu, static_cast<int>(state)));
  entry.text("name", chartText("CPU %d Idle State", _cpu)).text("treeId", chartText("s_%d_cpu_root", _cpu));
  entry.text("type", "binary").text("class", "cpu:idle").show(1).text("tip", kIdleStates[state].tip);
  finish(entry, kIdleStates[state].colours, series);
}
