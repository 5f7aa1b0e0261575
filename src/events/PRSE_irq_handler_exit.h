#pragma once

#include "events/PerfRecordSampleEvent.h"

/// A hard interrupt's handler ends; its CPU is as busy as it was before.
///
/// Payload as in the kernel's include/trace/events/irq.h: irq (offset 0, 4 bytes), the handler's result (4,
/// 4).
class PRSE_irq_handler_exit : public PerfRecordSampleEvent {
 public:
  explicit PRSE_irq_handler_exit(const PerfRecordSampleEventS& record);
  static PerfRecord* factory(char* record);
};
