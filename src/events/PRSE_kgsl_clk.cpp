#include "events/PRSE_kgsl_clk.h"

#include "events/GpuEvents.h"

namespace {

const PerfRecordSampleFactoryRegister f("kgsl:kgsl_clk", PRSE_kgsl_clk::factory);

}  // namespace

PRSE_kgsl_clk::PRSE_kgsl_clk(const PerfRecordSampleEventS& record) : PerfRecordSampleEvent(record) {
  reportPowerSwitch(record, 2);
}

PerfRecord* PRSE_kgsl_clk::factory(char* record) {
  return create<PRSE_kgsl_clk>(record, "PRSE: Found kgsl_clk");
}
