#include "timechart/IRQChart.h"

#include "json/PerfJSONWriter.h"
#include "timechart/ChartEntry.h"
#include "timechart/TimechartManager.h"

void IRQChart::addValue(ChartTime time, int value, int cpu) {
  ChartSeries* series = _series.find(cpu);
  if (time.isSelected() && series != nullptr) series->add(time.seconds(), static_cast<unsigned int>(value));
}

void IRQChart::outIRQChart(PerfJSONWriter& writer) const {
  const std::string name = TimechartManager::Instance()->getIRQName(_irq);
  for (int cpu = 0; cpu < _series.kSlots; ++cpu) outCpu(writer, name, cpu);
}

void IRQChart::outCpu(PerfJSONWriter& writer, const std::string& name, int cpu) const {
  const ChartSeries& series = *_series.find(cpu);
  if (series.empty()) return;
  ChartEntry entry(writer);
  entry.text("id", chartText("irq-%d-%d", _irq, cpu))
      .text("name", name)
      .text("treeId", chartText("%d_irq_root", _irq));
  entry.text("type", "binary").text("class", "irq").show(0).text("tip", chartText("Running on CPU %d", cpu));
  entry.hints(cpuColours(cpu)).writeData(series.changes());
}
