#pragma once

#include <optional>

/// Ties the recording's clock, nanoseconds since about boot, to the scale that the viewer is to see.

/// Reads the machine's uptime and the wall clock and sets systemStartTime, and gtodAtStart unless an option
/// has set that. Without a readable uptime both stay as they are. Called once, after the options.
void calcTimeConversion();

/// Seconds of the recording's clock. Whole seconds and the rest are converted apart, so that none of the
/// nanoseconds is lost in a large count.
double time64ToDouble(unsigned long long nanoseconds);

/// Seconds since the epoch.
double timeToEpochBase(unsigned long long nanoseconds);

/// Seconds on the scale that timeConversionType selects.
double doTimeConversion(unsigned long long nanoseconds);

/// The same for a time that the ftrace text gives in seconds. Only scale 4 knows what to make of it; the
/// result on every other scale is 0.0.
double doTimeConversion(double seconds);

/// A converted time relative to gtodAtStart, the document's time zero.
double relativeToStart(double converted);

/// The same, or nothing when the time is outside the range that -s and -f selected.
std::optional<double> selectedTime(double converted);
