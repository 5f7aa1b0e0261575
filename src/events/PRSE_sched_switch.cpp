#include "events/PRSE_sched_switch.h"

#include "timechart/TimechartManager.h"

namespace {

const PerfRecordSampleFactoryRegister f("sched:sched_switch", PRSE_sched_switch::factory);

/// The bit of TASK_UNINTERRUPTIBLE in a process's state.
constexpr unsigned int kUninterruptible = 2;

}  // namespace

PerfRecord* PRSE_sched_switch::factory(char* record) {
  return create<PRSE_sched_switch>(record);
}

int PRSE_sched_switch::process(const PerfRecordSampleEventS& record) {
  alloc(record);
  handle(record);
  return 1;
}

void PRSE_sched_switch::alloc(const PerfRecordSampleEventS& record) {
  const EventPayload payload = record.payload();
  take(payload.i32(44), payload.i32(16), payload.u32(24));
}

void PRSE_sched_switch::take(int nextPid, int prevPid, unsigned int prevState) {
  _nextPid = nextPid;
  _prevPid = prevPid;
  _prevState = prevState & kUninterruptible;
}

void PRSE_sched_switch::handle(const PerfRecordSampleEventS& record) {
  TimechartManager* manager = TimechartManager::Instance();
  const ChartTime time = record.time();
  const int cpu = record.cpu();
  // In this order: the incoming process looks for where it came from in the table that the second step
  // changes.
  manager->addStatusToProcessChart(time, _nextPid, ProcessChart::kRunning, cpu, 0);
  manager->setLastPidForCpu(_nextPid, cpu);
  const bool blocked = _prevState == kUninterruptible;
  manager->addStatusToProcessChart(time, _prevPid, blocked ? ProcessChart::kBlocked : ProcessChart::kStopped,
                                   cpu, 0);
  if (_nextPid == 0) {
    manager->addValueToCPUChart(time, cpu, CPUChart::kBusy, 0);
    return;
  }
  manager->addValueToCPUChart(time, cpu, CPUChart::kBusy, 1);
  const int migratedFrom = manager->pidMigratedFrom(_nextPid, cpu);
  if (migratedFrom != -1) manager->addValueToCPUChart(time, migratedFrom, CPUChart::kBusy, 0);
}
