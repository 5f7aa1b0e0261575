#include "timechart/IRQChart.h"

#include "json/PerfJSONWriter.h"
#include "timechart/ChartEntry.h"
#include "timechart/TimeOrder.h"
#include "timechart/TimechartManager.h"

void IRQChart::addValue(ChartTime time, int value, int cpu) {
  const std::int8_t slot = PerCpu<int>::slotOf(cpu);
  if (time.isSelected() && slot >= 0) _facts.add({time.seconds(), value, slot});
}

void IRQChart::outIRQChart(PerfJSONWriter& writer) const {
  const std::string name = TimechartManager::Instance()->getIRQName(_irq);
  PerCpu<bool> ran;
  PerCpu<ChartSamples> changes;
  for (const Fact& fact : inTimeOrder(_facts)) {
    ran.set(fact.cpu, true);
    addChange(*changes.find(fact.cpu), fact.time, static_cast<unsigned int>(fact.value));
  }
  for (int cpu = 0; cpu < PerCpu<int>::kSlots; ++cpu)
    if (ran.get(cpu)) outCpu(writer, name, cpu, *changes.find(cpu));
}

void IRQChart::outCpu(PerfJSONWriter& writer, const std::string& name, int cpu,
                      const ChartSamples& changes) const {
  ChartEntry entry(writer);
  entry.text("id", chartText("irq-%d-%d", _irq, cpu))
      .text("name", name)
      .text("treeId", chartText("%d_irq_root", _irq));
  entry.text("type", "binary").text("class", "irq").show(0).text("tip", chartText("Running on CPU %d", cpu));
  entry.hints(cpuColours(cpu)).writeData(changes);
}
