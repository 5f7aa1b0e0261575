#include "events/PRSE_kgsl_waittimestamp_entry.h"

#include "timechart/TimechartManager.h"

namespace {

const PerfRecordSampleFactoryRegister f("kgsl:kgsl_waittimestamp_entry",
                                        PRSE_kgsl_waittimestamp_entry::factory);

}  // namespace

PRSE_kgsl_waittimestamp_entry::PRSE_kgsl_waittimestamp_entry(const PerfRecordSampleEventS& record)
    : PerfRecordSampleEvent(record) {
  TimechartManager::Instance()->addStatusToProcessChart(record.time(), record.commonPid(),
                                                        ProcessChart::kWaitsForGpu, 0, 0);
}

PerfRecord* PRSE_kgsl_waittimestamp_entry::factory(char* record) {
  return create<PRSE_kgsl_waittimestamp_entry>(record, "PRSE: Found kgsl_waittimestamp_entry");
}
