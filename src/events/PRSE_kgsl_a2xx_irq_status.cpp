#include "events/PRSE_kgsl_a2xx_irq_status.h"

#include "events/GpuEvents.h"

namespace {

const PerfRecordSampleFactoryRegister f("kgsl:kgsl_a2xx_irq_status", PRSE_kgsl_a2xx_irq_status::factory);

}  // namespace

PRSE_kgsl_a2xx_irq_status::PRSE_kgsl_a2xx_irq_status(const PerfRecordSampleEventS& record)
    : PerfRecordSampleEvent(record) {
  const unsigned int status = record.payload().u32(8);
  showGpuValue(record, "a2xx_irq status", status);
  reportGpuInterrupt(record, status, true);
}

PerfRecord* PRSE_kgsl_a2xx_irq_status::factory(char* record) {
  return create<PRSE_kgsl_a2xx_irq_status>(record, "PRSE: Found kgsl_a2xx_irq_status");
}
