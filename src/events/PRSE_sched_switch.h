#pragma once

#include "events/PerfRecordSampleEvent.h"

/// A context switch.
///
/// Payload as in the kernel's include/trace/events/sched.h: previous name (offset 0, 16 bytes), prev_pid (16,
/// 4), priority (20, 4), prev_state (24, 4), next name (28, 16), next_pid (44, 4), priority (48, 4).
class PRSE_sched_switch : public PerfRecordSampleEvent {
 public:
  explicit PRSE_sched_switch(const PerfRecordSampleEventS& record) : PerfRecordSampleEvent(record) {}
  static PerfRecord* factory(char* record);

  int process(const PerfRecordSampleEventS& record) override;
  /// Reads the fields from the record; overridden for another layout.
  virtual void alloc(const PerfRecordSampleEventS& record);
  /// Reports the fields to the timechart.
  virtual void handle(const PerfRecordSampleEventS& record);

 protected:
  /// Sets the fields. Of the state only the bit for an uninterruptible sleep is kept.
  void take(int nextPid, int prevPid, unsigned int prevState);

 private:
  int _nextPid = 0;
  int _prevPid = 0;
  unsigned int _prevState = 0;
};
