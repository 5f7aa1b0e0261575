#pragma once

#include "events/PRSE_sched_switch.h"

/// A context switch in the layout of a 64-bit kernel, where prev_state (offset 24) has 8 bytes and what
/// follows it is 4 bytes farther on.
class PRSE_sched_switch_64 : public PRSE_sched_switch {
 public:
  using PRSE_sched_switch::PRSE_sched_switch;
  static PerfRecord* factory(char* record);

  void alloc(const PerfRecordSampleEventS& record) override;
};
