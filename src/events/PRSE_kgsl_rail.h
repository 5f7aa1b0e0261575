#pragma once

#include "events/PerfRecordSampleEvent.h"

/// The GPU's power rail is switched off or on.
///
/// Payload: the location of the device's name (offset 0, 4 bytes), flag (4, 4), 0 off or 1 on.
class PRSE_kgsl_rail : public PerfRecordSampleEvent {
 public:
  explicit PRSE_kgsl_rail(const PerfRecordSampleEventS& record);
  static PerfRecord* factory(char* record);
};
