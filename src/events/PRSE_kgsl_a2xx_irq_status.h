#pragma once

#include "events/PerfRecordSampleEvent.h"

/// An interrupt of a core of the a2xx kind.
///
/// Payload: the location of the device's name (offset 0, 4 bytes), device id (4, 4), status (8, 4).
class PRSE_kgsl_a2xx_irq_status : public PerfRecordSampleEvent {
 public:
  explicit PRSE_kgsl_a2xx_irq_status(const PerfRecordSampleEventS& record);
  static PerfRecord* factory(char* record);
};
