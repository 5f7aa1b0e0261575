#include "events/PRSE_softirq_entry.h"

#include "timechart/TimechartManager.h"

namespace {

const PerfRecordSampleFactoryRegister f("irq:softirq_entry", PRSE_softirq_entry::factory);

}  // namespace

PRSE_softirq_entry::PRSE_softirq_entry(const PerfRecordSampleEventS& record) : PerfRecordSampleEvent(record) {
  const int irq = softInterruptId(record.payload().u32(0));
  TimechartManager::Instance()->addValueToIRQChart(record.time(), irq, 1, record.cpu());
}

PerfRecord* PRSE_softirq_entry::factory(char* record) {
  return create<PRSE_softirq_entry>(record);
}
