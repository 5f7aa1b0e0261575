#pragma once

#include "events/PerfRecordSampleEvent.h"

/// A hard interrupt's handler begins, which makes its CPU busy.
///
/// Payload as in the kernel's include/trace/events/irq.h: irq (offset 0, 4 bytes), the location of the name
/// (4, 4).
class PRSE_irq_handler_entry : public PerfRecordSampleEvent {
 public:
  explicit PRSE_irq_handler_entry(const PerfRecordSampleEventS& record);
  static PerfRecord* factory(char* record);
};
