#pragma once

#include "events/PerfRecordSampleEventS.h"

/// Functions shared by the decoders of the kgsl driver's trace-points.

/// A GPU core, named by two digits of the device's name: kgsl-3d0 is dimension 3, device 0. The characters
/// before them are ignored, and anything but a digit counts as 0.
struct GpuCore {
  int dimension;
  int device;
};

/// Returns the core whose name is located by the payload's first word.
GpuCore gpuCore(const EventPayload& payload);

/// Adds a status to the chart of the payload's core.
void reportGpuStatus(const PerfRecordSampleEventS& record, int status, unsigned int sub);

/// Adds power state `rung` plus the payload's flag, 0 off or 1 on. Power states form a ladder, and each is
/// reached from both sides: "rail on" and "bus off" are the same state.
void reportPowerSwitch(const PerfRecordSampleEventS& record, int rung);

/// Reports an interrupt: status 17 and 18 for the two completion interrupts if the core distinguishes them,
/// 19 for any other.
void reportGpuInterrupt(const PerfRecordSampleEventS& record, unsigned int status, bool tellsApart);

/// Prints a value and the device's name in a verbose run.
void showGpuValue(const PerfRecordSampleEventS& record, const char* what, unsigned int value);
