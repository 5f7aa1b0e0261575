#pragma once

#include <optional>

#include "run/TimeBase.h"

/// The time of a fact as the charts have it. A decoder converts a record's time once, whatever the number of
/// charts that the record concerns.
class ChartTime {
 public:
  /// Takes nanoseconds of the recording's clock. Implicit, so that a raw time may stand for a chart's.
  ChartTime(unsigned long long nanoseconds) : _seconds(selectedTime(doTimeConversion(nanoseconds))) {}

  /// Returns whether the time is in the selected range; facts outside it are dropped.
  bool isSelected() const { return _seconds.has_value(); }
  /// Returns seconds relative to gtodAtStart; 0 for a time that is not selected.
  double seconds() const { return _seconds.value_or(0); }

 private:
  std::optional<double> _seconds;
};
