#pragma once

#include "events/PerfRecordSampleEvent.h"

/// A soft interrupt's handler ends. The CPU's chart is not changed.
///
/// Payload as in the kernel's include/trace/events/irq.h: vec (offset 0, 4 bytes).
class PRSE_softirq_exit : public PerfRecordSampleEvent {
 public:
  explicit PRSE_softirq_exit(const PerfRecordSampleEventS& record);
  static PerfRecord* factory(char* record);
};
