#include "events/PRSE_task_rename.h"

#include <string>

#include "timechart/TimechartManager.h"

namespace {

const PerfRecordSampleFactoryRegister f("task:task_rename", PRSE_task_rename::factory);

}  // namespace

PRSE_task_rename::PRSE_task_rename(const PerfRecordSampleEventS& record) : PerfRecordSampleEvent(record) {
  const EventPayload payload = record.payload();
  TimechartManager::Instance()->setProcessName(payload.i32(0), std::string(payload.text(20)), true);
}

PerfRecord* PRSE_task_rename::factory(char* record) {
  return create<PRSE_task_rename>(record, "PRSE: Found task_rename");
}
