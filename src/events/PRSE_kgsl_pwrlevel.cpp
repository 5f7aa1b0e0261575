#include "events/PRSE_kgsl_pwrlevel.h"

#include "events/GpuEvents.h"
#include "timechart/GPUChart.h"

namespace {

const PerfRecordSampleFactoryRegister f("kgsl:kgsl_pwrlevel", PRSE_kgsl_pwrlevel::factory);

}  // namespace

PRSE_kgsl_pwrlevel::PRSE_kgsl_pwrlevel(const PerfRecordSampleEventS& record) : PerfRecordSampleEvent(record) {
  const unsigned int frequency = record.payload().u32(8);
  showGpuValue(record, "pwrlevel freq", frequency);
  reportGpuStatus(record, GPUChart::kFrequency, frequency / 1000000);
}

PerfRecord* PRSE_kgsl_pwrlevel::factory(char* record) {
  return create<PRSE_kgsl_pwrlevel>(record, "PRSE: Found kgsl_pwrlevel");
}
