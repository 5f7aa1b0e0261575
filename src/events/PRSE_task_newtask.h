#pragma once

#include <string>

#include "events/PerfRecordSampleEvent.h"

/// A new task.
///
/// Payload as in the kernel's include/trace/events/task.h: pid (offset 0, 4 bytes), name (4, 16), clone flags
/// (20, 4).
class PRSE_task_newtask : public PerfRecordSampleEvent {
 public:
  explicit PRSE_task_newtask(const PerfRecordSampleEventS& record) : PerfRecordSampleEvent(record) {}
  static PerfRecord* factory(char* record);

  int process(const PerfRecordSampleEventS& record) override;
  /// Reads the fields from the record; overridden for another layout.
  virtual void alloc(const PerfRecordSampleEventS& record);
  /// Reports the fields to the timechart.
  virtual void handle(const PerfRecordSampleEventS& record);

 protected:
  /// Pid and name have the same offsets in all layouts. Of the flags only whether the task is a thread of its
  /// creator is kept.
  void take(const EventPayload& payload, unsigned int cloneFlags);

 private:
  int _newPid = 0;
  std::string _comm;
  unsigned int _cloneThread = 0;
};
