#pragma once

#include "events/PerfRecordSampleEvent.h"

/// A task gets a new name, which replaces the one that its chart has.
///
/// Payload as in the kernel's include/trace/events/task.h: pid (offset 0, 4 bytes), old name (4, 16), new
/// name (20, 16).
class PRSE_task_rename : public PerfRecordSampleEvent {
 public:
  explicit PRSE_task_rename(const PerfRecordSampleEventS& record);
  static PerfRecord* factory(char* record);
};
