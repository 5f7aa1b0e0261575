#include "events/PRSE_cpu_idle.h"

#include <cstdio>

#include "run/Settings.h"
#include "timechart/TimechartManager.h"

namespace {

const PerfRecordSampleFactoryRegister f("power:cpu_idle", PRSE_cpu_idle::factory);

/// PWR_EVENT_EXIT of the kernel: the CPU leaves its idle state.
constexpr unsigned int kLeftIdle = 0xFFFFFFFF;

}  // namespace

PRSE_cpu_idle::PRSE_cpu_idle(const PerfRecordSampleEventS& record) : PerfRecordSampleEvent(record) {
  const EventPayload payload = record.payload();
  const unsigned int state = payload.u32(0);
  // After the doubling only states 0 and 1 are among the chart's four series; documents have always shown
  // those two.
  const unsigned int value = state == kLeftIdle ? kLeftIdle : state * 2 + 1;
  if (verbose()) std::printf("PRSE: cpu_idle.state=%u, cpu_id=%u\n", value, payload.u32(4));
  TimechartManager::Instance()->addValueToCPUChart(record.time(), record.cpu(), CPUChart::kIdle,
                                                   static_cast<int>(value));
}

PerfRecord* PRSE_cpu_idle::factory(char* record) {
  return create<PRSE_cpu_idle>(record, "PRSE: Found cpu_idle");
}
