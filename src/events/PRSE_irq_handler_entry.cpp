#include "events/PRSE_irq_handler_entry.h"

#include <string>
#include <string_view>

#include "timechart/TimechartManager.h"

namespace {

const PerfRecordSampleFactoryRegister f("irq:irq_handler_entry", PRSE_irq_handler_entry::factory);

}  // namespace

PRSE_irq_handler_entry::PRSE_irq_handler_entry(const PerfRecordSampleEventS& record)
    : PerfRecordSampleEvent(record) {
  const EventPayload payload = record.payload();
  const int irq = payload.i32(0);
  const ChartTime time = record.time();
  TimechartManager* manager = TimechartManager::Instance();
  // Before the state changes. There is one slot a CPU and no stack: a nested entry saves the outer
  // one's.
  manager->saveLastStateForCPU(record.cpu());
  manager->addValueToCPUChart(time, record.cpu(), CPUChart::kBusy, 1);
  if (!manager->addValueToIRQChart(time, irq, 1, record.cpu())) return;
  const std::string_view name = payload.locatedText(4);
  if (name.data() != nullptr) manager->addIrqName(irq, std::string(name));
}

PerfRecord* PRSE_irq_handler_entry::factory(char* record) {
  return create<PRSE_irq_handler_entry>(record, "PRSE: Found irq_handler_entry");
}
