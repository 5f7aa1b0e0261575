#pragma once

#include "events/PRSE_sched_wakeup.h"

/// A new process becomes runnable for the first time; the same payload as sched_wakeup.
class PRSE_sched_wakeup_new : public PRSE_sched_wakeup {
 public:
  using PRSE_sched_wakeup::PRSE_sched_wakeup;
  static PerfRecord* factory(char* record);
};
