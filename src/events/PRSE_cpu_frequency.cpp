#include "events/PRSE_cpu_frequency.h"

#include "timechart/TimechartManager.h"

namespace {

const PerfRecordSampleFactoryRegister f("power:cpu_frequency", PRSE_cpu_frequency::factory);

}  // namespace

PRSE_cpu_frequency::PRSE_cpu_frequency(const PerfRecordSampleEventS& record) : PerfRecordSampleEvent(record) {
  const EventPayload payload = record.payload();
  const unsigned int megahertz = payload.u32(0) / 1000;
  TimechartManager::Instance()->addValueToCPUChart(record.time(), payload.i32(4), CPUChart::kFrequency,
                                                   static_cast<int>(megahertz));
}

PerfRecord* PRSE_cpu_frequency::factory(char* record) {
  return create<PRSE_cpu_frequency>(record, "PRSE: Found cpu_frequency");
}
