#pragma once

#include "run/TimeBase.h"

/// The time of a fact as the charts have it. A decoder converts a record's time once, whatever the number of
/// charts that the record concerns.
class ChartTime {
 public:
  /// Takes nanoseconds of the recording's clock. Implicit, so that a raw time may stand for a chart's.
  ChartTime(unsigned long long nanoseconds) : ChartTime(Converted{doTimeConversion(nanoseconds)}) {}
  /// Takes seconds of the ftrace text.
  static ChartTime ofMarker(double seconds) { return ChartTime(Converted{doTimeConversion(seconds)}); }

  /// Returns whether the time is in the selected range; facts outside it are dropped.
  bool isSelected() const { return _isSelected; }
  /// Returns seconds relative to gtodAtStart.
  double seconds() const { return _seconds; }

 private:
  struct Converted {
    double time;
  };
  explicit ChartTime(Converted converted)
      : _seconds(relativeToStart(converted.time)), _isSelected(isSelectedTime(converted.time)) {}

  double _seconds;
  bool _isSelected;
};
