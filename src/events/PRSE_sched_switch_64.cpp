#include "events/PRSE_sched_switch_64.h"

namespace {

const PerfRecordSampleFactoryRegister64 f("sched:sched_switch", PRSE_sched_switch_64::factory);

}  // namespace

PerfRecord* PRSE_sched_switch_64::factory(char* record) {
  return create<PRSE_sched_switch_64>(record);
}

void PRSE_sched_switch_64::alloc(const PerfRecordSampleEventS& record) {
  const EventPayload payload = record.payload64();
  take(payload.i32(48), payload.i32(16), payload.u32(24));
}
