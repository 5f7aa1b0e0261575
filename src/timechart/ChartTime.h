#pragma once

#include <optional>

#include "run/TimeBase.h"

/// Returns the time of a chart's sample, in seconds relative to gtodAtStart, or nothing when it is outside
/// the selected range. Takes nanoseconds of the recording's clock, or seconds as the ftrace text has them.
template <typename Time>
std::optional<double> chartTime(Time time) {
  return selectedTime(doTimeConversion(time));
}
