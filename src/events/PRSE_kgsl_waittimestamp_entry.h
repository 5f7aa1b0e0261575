#pragma once

#include "events/PerfRecordSampleEvent.h"

/// A process begins to wait for the GPU. No payload is read; the process is that of the common header.
class PRSE_kgsl_waittimestamp_entry : public PerfRecordSampleEvent {
 public:
  explicit PRSE_kgsl_waittimestamp_entry(const PerfRecordSampleEventS& record);
  static PerfRecord* factory(char* record);
};
