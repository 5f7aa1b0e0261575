#include "events/PRSE_sched_wakeup_new.h"

namespace {

const PerfRecordSampleFactoryRegister f("sched:sched_wakeup_new", PRSE_sched_wakeup_new::factory);

}  // namespace

PerfRecord* PRSE_sched_wakeup_new::factory(char* record) {
  return create<PRSE_sched_wakeup_new>(record);
}
