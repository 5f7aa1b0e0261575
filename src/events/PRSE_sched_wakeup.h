#pragma once

#include "events/PerfRecordSampleEvent.h"

/// A process becomes runnable. The CPU is the one that woke it.
///
/// Payload as in the kernel's include/trace/events/sched.h: name (offset 0, 16 bytes), pid (16, 4).
class PRSE_sched_wakeup : public PerfRecordSampleEvent {
 public:
  explicit PRSE_sched_wakeup(const PerfRecordSampleEventS& record);
  static PerfRecord* factory(char* record);
};
