#include "events/PRSE_kgsl_bus.h"

#include "events/GpuEvents.h"

namespace {

const PerfRecordSampleFactoryRegister f("kgsl:kgsl_bus", PRSE_kgsl_bus::factory);

}  // namespace

PRSE_kgsl_bus::PRSE_kgsl_bus(const PerfRecordSampleEventS& record) : PerfRecordSampleEvent(record) {
  reportPowerSwitch(record, 1);
}

PerfRecord* PRSE_kgsl_bus::factory(char* record) {
  return create<PRSE_kgsl_bus>(record, "PRSE: Found kgsl_bus");
}
