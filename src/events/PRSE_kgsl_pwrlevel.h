#pragma once

#include "events/PerfRecordSampleEvent.h"

/// The GPU changes its frequency.
///
/// Payload: the location of the device's name (offset 0, 4 bytes), level (4, 4), frequency in Hz (8, 4).
class PRSE_kgsl_pwrlevel : public PerfRecordSampleEvent {
 public:
  explicit PRSE_kgsl_pwrlevel(const PerfRecordSampleEventS& record);
  static PerfRecord* factory(char* record);
};
