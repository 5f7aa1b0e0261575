#pragma once

#include "events/PerfRecordSampleEvent.h"

/// A CPU changes its frequency; it is the CPU in the payload, not the one of the sample.
///
/// Payload as in the kernel's include/trace/events/power.h: state (offset 0, 4 bytes), the frequency in kHz;
/// cpu_id (4, 4).
class PRSE_cpu_frequency : public PerfRecordSampleEvent {
 public:
  explicit PRSE_cpu_frequency(const PerfRecordSampleEventS& record);
  static PerfRecord* factory(char* record);
};
