#include "events/PRSE_kgsl_rail.h"

#include "events/GpuEvents.h"

namespace {

const PerfRecordSampleFactoryRegister f("kgsl:kgsl_rail", PRSE_kgsl_rail::factory);

}  // namespace

PRSE_kgsl_rail::PRSE_kgsl_rail(const PerfRecordSampleEventS& record) : PerfRecordSampleEvent(record) {
  reportPowerSwitch(record, 0);
}

PerfRecord* PRSE_kgsl_rail::factory(char* record) {
  return create<PRSE_kgsl_rail>(record, "PRSE: Found kgsl_rail");
}
