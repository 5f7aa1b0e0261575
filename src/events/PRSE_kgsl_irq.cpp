#include "events/PRSE_kgsl_irq.h"

#include "events/GpuEvents.h"

namespace {

const PerfRecordSampleFactoryRegister f("kgsl:kgsl_irq", PRSE_kgsl_irq::factory);

}  // namespace

PRSE_kgsl_irq::PRSE_kgsl_irq(const PerfRecordSampleEventS& record) : PerfRecordSampleEvent(record) {
  reportPowerSwitch(record, 3);
}

PerfRecord* PRSE_kgsl_irq::factory(char* record) {
  return create<PRSE_kgsl_irq>(record, "PRSE: Found kgsl_irq");
}
