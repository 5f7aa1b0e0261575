#pragma once

#include "events/PRSE_task_newtask.h"

/// A new task in the layout of a 64-bit kernel, where the clone flags have 8 bytes and are aligned to them
/// (offset 24).
class PRSE_task_newtask_64 : public PRSE_task_newtask {
 public:
  using PRSE_task_newtask::PRSE_task_newtask;
  static PerfRecord* factory(char* record);

  void alloc(const PerfRecordSampleEventS& record) override;
};
