#pragma once

/// The numbers of the events in make_large's trace.
enum Event : unsigned int {
  kSwitch = 20,
  kWakeup,
  kIdle,
  kFrequency,
  kIrqEntry,
  kIrqExit,
  kSoftEntry,
  kSoftExit,
  kGpuClock
};
