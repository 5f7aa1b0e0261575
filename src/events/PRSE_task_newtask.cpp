#include "events/PRSE_task_newtask.h"

#include "timechart/TimechartManager.h"

namespace {

const PerfRecordSampleFactoryRegister f("task:task_newtask", PRSE_task_newtask::factory);

/// CLONE_THREAD of the kernel's sched.h.
constexpr unsigned int kCloneThread = 0x10000;

}  // namespace

PerfRecord* PRSE_task_newtask::factory(char* record) {
  return create<PRSE_task_newtask>(record, "PRSE: Found task_newtask");
}

int PRSE_task_newtask::process(const PerfRecordSampleEventS& record) {
  alloc(record);
  handle(record);
  return 1;
}

void PRSE_task_newtask::alloc(const PerfRecordSampleEventS& record) {
  const EventPayload payload = record.payload();
  take(payload, payload.u32(20));
}

void PRSE_task_newtask::take(const EventPayload& payload, unsigned int cloneFlags) {
  _newPid = payload.i32(0);
  _comm = payload.text(4);
  _cloneThread = cloneFlags & kCloneThread;
}

void PRSE_task_newtask::handle(const PerfRecordSampleEventS& record) {
  TimechartManager* manager = TimechartManager::Instance();
  manager->setProcessName(_newPid, _comm, false);
  if (_cloneThread != 0) manager->setProcessPPid(_newPid, static_cast<int>(record.pid()));
}
