#include "events/PRSE_kgsl_waittimestamp_exit.h"

#include "timechart/TimechartManager.h"

namespace {

const PerfRecordSampleFactoryRegister f("kgsl:kgsl_waittimestamp_exit",
                                        PRSE_kgsl_waittimestamp_exit::factory);

}  // namespace

PRSE_kgsl_waittimestamp_exit::PRSE_kgsl_waittimestamp_exit(const PerfRecordSampleEventS& record)
    : PerfRecordSampleEvent(record) {
  TimechartManager::Instance()->addStatusToProcessChart(record.time(), record.commonPid(),
                                                        ProcessChart::kGpuAnswered, 0, 0);
}

PerfRecord* PRSE_kgsl_waittimestamp_exit::factory(char* record) {
  return create<PRSE_kgsl_waittimestamp_exit>(record, "PRSE: Found kgsl_waittimestamp_exit");
}
