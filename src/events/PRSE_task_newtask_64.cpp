#include "events/PRSE_task_newtask_64.h"

namespace {

const PerfRecordSampleFactoryRegister64 f("task:task_newtask", PRSE_task_newtask_64::factory);

}  // namespace

PerfRecord* PRSE_task_newtask_64::factory(char* record) {
  return create<PRSE_task_newtask_64>(record, "PRSE: Found task_newtask_64");
}

void PRSE_task_newtask_64::alloc(const PerfRecordSampleEventS& record) {
  const EventPayload payload = record.payload64();
  take(payload, payload.u32(24));
}
