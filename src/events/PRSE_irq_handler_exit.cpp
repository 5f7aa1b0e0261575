#include "events/PRSE_irq_handler_exit.h"

#include "timechart/TimechartManager.h"

namespace {

const PerfRecordSampleFactoryRegister f("irq:irq_handler_exit", PRSE_irq_handler_exit::factory);

}  // namespace

PRSE_irq_handler_exit::PRSE_irq_handler_exit(const PerfRecordSampleEventS& record)
    : PerfRecordSampleEvent(record) {
  TimechartManager* manager = TimechartManager::Instance();
  const ChartTime time = record.time();
  const int cpu = record.cpu();
  manager->addValueToCPUChart(time, cpu, CPUChart::kBusy, manager->getLastStateForCPU(cpu));
  manager->addValueToIRQChart(time, record.payload().i32(0), 0, cpu);
}

PerfRecord* PRSE_irq_handler_exit::factory(char* record) {
  return create<PRSE_irq_handler_exit>(record, "PRSE: Found irq_handler_exit");
}
