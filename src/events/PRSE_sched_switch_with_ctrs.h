#pragma once

#include "events/PerfRecordSampleEvent.h"

/// Increments of the hardware counters during the run of the process that is switched out.
///
/// Payload: pid out (offset 0), pid in (4), cycles (8), four counters of the first level (12), two of the
/// second (28); 4 bytes each.
class PRSE_sched_switch_with_ctrs : public PerfRecordSampleEvent {
 public:
  explicit PRSE_sched_switch_with_ctrs(const PerfRecordSampleEventS& record);
  static PerfRecord* factory(char* record);
};
