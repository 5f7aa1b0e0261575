#include "events/PRSE_sched_switch_with_ctrs.h"

#include "timechart/TimechartManager.h"

namespace {

const PerfRecordSampleFactoryRegister f("perf_trace_counters:sched_switch_with_ctrs",
                                        PRSE_sched_switch_with_ctrs::factory);

}  // namespace

PRSE_sched_switch_with_ctrs::PRSE_sched_switch_with_ctrs(const PerfRecordSampleEventS& record)
    : PerfRecordSampleEvent(record) {
  const EventPayload payload = record.payload();
  unsigned int l1[ProcessChart::kL1Counters];
  unsigned int l2[ProcessChart::kL2Counters];
  for (std::size_t i = 0; i < ProcessChart::kL1Counters; ++i) l1[i] = payload.u32(12 + 4 * i);
  for (std::size_t i = 0; i < ProcessChart::kL2Counters; ++i) l2[i] = payload.u32(28 + 4 * i);
  const ChartTime time = record.time();
  TimechartManager* manager = TimechartManager::Instance();
  manager->addCountersToProcessChart(time, record.cpu(), payload.i32(0), payload.u32(8), l1, l2);

  // The bar of the process that is switched in starts at zero.
  const unsigned int zeros[ProcessChart::kL1Counters] = {};
  manager->addCountersToProcessChart(time, record.cpu(), payload.i32(4), 0, zeros, zeros);
}

PerfRecord* PRSE_sched_switch_with_ctrs::factory(char* record) {
  return create<PRSE_sched_switch_with_ctrs>(record);
}
