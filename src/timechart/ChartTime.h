#pragma once

#include <optional>

#include "run/TimeBase.h"

/// Returns the time of a chart's sample, in seconds relative to gtodAtStart, or nothing when it is outside
/// the selected range. `time` is in nanoseconds of the recording's clock, or in seconds of the ftrace text.
template <typename Time>
std::optional<double> chartTime(Time time) {
  return selectedTime(doTimeConversion(time));
}
