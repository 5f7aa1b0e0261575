#include "events/PRSE_kgsl_z180_irq_status.h"

#include "events/GpuEvents.h"

namespace {

const PerfRecordSampleFactoryRegister f("kgsl:kgsl_z180_irq_status", PRSE_kgsl_z180_irq_status::factory);

}  // namespace

PRSE_kgsl_z180_irq_status::PRSE_kgsl_z180_irq_status(const PerfRecordSampleEventS& record)
    : PerfRecordSampleEvent(record) {
  const unsigned int status = record.payload().u32(4);
  showGpuValue(record, "z180_irq status", status);
  reportGpuInterrupt(record, status, false);
}

PerfRecord* PRSE_kgsl_z180_irq_status::factory(char* record) {
  return create<PRSE_kgsl_z180_irq_status>(record, "PRSE: Found kgsl_z180_irq_status");
}
