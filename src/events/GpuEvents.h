#pragma once

#include "events/PerfRecordSampleEventS.h"

/// What the decoders of the kgsl driver's trace-points share.

/// A GPU core, named by two digits of the device's name: kgsl-3d0 is dimension 3, device 0. The characters
/// before them are not looked at, and what is no number counts as 0.
struct GpuCore {
  int dimension;
  int device;
};

/// The core whose name the payload's first word locates.
GpuCore gpuCore(const EventPayload& payload);

/// Hands a status of the payload's core to its chart.
void reportGpuStatus(const PerfRecordSampleEventS& record, int status, unsigned int sub);

/// Reports the rung of the power ladder that a switch's flag, 0 off or 1 on, adds to the switch's own. So
/// each rung is reached from both sides: the rail switched on and the bus switched off mean the same.
void reportPowerSwitch(const PerfRecordSampleEventS& record, int rung);

/// Reports an interrupt: 17 and 18 for the two completion interrupts if the core tells them apart, 19 for any
/// other.
void reportGpuInterrupt(const PerfRecordSampleEventS& record, unsigned int status, bool tellsApart);

/// At verbosity above 0 prints a value and the device's name.
void showGpuValue(const PerfRecordSampleEventS& record, const char* what, unsigned int value);
