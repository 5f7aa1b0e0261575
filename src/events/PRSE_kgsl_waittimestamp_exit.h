#pragma once

#include "events/PerfRecordSampleEvent.h"

/// A process ends waiting for the GPU. No payload is read; the process is that of the common header.
class PRSE_kgsl_waittimestamp_exit : public PerfRecordSampleEvent {
 public:
  explicit PRSE_kgsl_waittimestamp_exit(const PerfRecordSampleEventS& record);
  static PerfRecord* factory(char* record);
};
