#pragma once

#include "events/PerfRecordSampleEvent.h"

/// A CPU enters or leaves an idle state. Charted for the CPU of the sample; the payload's cpu_id is only
/// printed.
///
/// Payload as in the kernel's include/trace/events/power.h: state (offset 0, 4 bytes), cpu_id (4, 4).
class PRSE_cpu_idle : public PerfRecordSampleEvent {
 public:
  explicit PRSE_cpu_idle(const PerfRecordSampleEventS& record);
  static PerfRecord* factory(char* record);
};
