#include "events/PRSE_sched_wakeup.h"

#include "timechart/TimechartManager.h"

namespace {

const PerfRecordSampleFactoryRegister f("sched:sched_wakeup", PRSE_sched_wakeup::factory);

}  // namespace

PRSE_sched_wakeup::PRSE_sched_wakeup(const PerfRecordSampleEventS& record) : PerfRecordSampleEvent(record) {
  TimechartManager::Instance()->addStatusToProcessChart(record.time(), record.payload().i32(16),
                                                        ProcessChart::kWoken, record.cpu(), 0);
}

PerfRecord* PRSE_sched_wakeup::factory(char* record) {
  return create<PRSE_sched_wakeup>(record);
}
