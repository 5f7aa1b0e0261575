#pragma once

#include "events/PerfRecordSampleEvent.h"

/// A process issues work to the GPU. Adds a marker to the chart of the process and to that of the GPU. Work
/// that was refused (result not 0) adds none.
///
/// Payload: the location of the device's name (offset 0, 4 bytes), flags (20, 4), result (24, 4),
/// drawctxt_type (28, 4).
class PRSE_kgsl_issueibcmds : public PerfRecordSampleEvent {
 public:
  explicit PRSE_kgsl_issueibcmds(const PerfRecordSampleEventS& record);
  static PerfRecord* factory(char* record);
};
