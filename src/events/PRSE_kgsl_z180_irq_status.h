#pragma once

#include "events/PerfRecordSampleEvent.h"

/// An interrupt of a core of the z180 kind. Its completion interrupts are not distinguished.
///
/// Payload: the location of the device's name (offset 0, 4 bytes), status (4, 4).
class PRSE_kgsl_z180_irq_status : public PerfRecordSampleEvent {
 public:
  explicit PRSE_kgsl_z180_irq_status(const PerfRecordSampleEventS& record);
  static PerfRecord* factory(char* record);
};
