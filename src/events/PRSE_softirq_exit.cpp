#include "events/PRSE_softirq_exit.h"

#include "timechart/TimechartManager.h"

namespace {

const PerfRecordSampleFactoryRegister f("irq:softirq_exit", PRSE_softirq_exit::factory);

}  // namespace

PRSE_softirq_exit::PRSE_softirq_exit(const PerfRecordSampleEventS& record) : PerfRecordSampleEvent(record) {
  const int irq = softInterruptId(record.payload().u32(0));
  TimechartManager::Instance()->addValueToIRQChart(record.time(), irq, 0, record.cpu());
}

PerfRecord* PRSE_softirq_exit::factory(char* record) {
  return create<PRSE_softirq_exit>(record);
}
