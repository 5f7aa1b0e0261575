#pragma once

/// Converts the recording's clock, nanoseconds since about boot, to the document's time scale.

/// Reads the machine's uptime and the wall clock and sets systemStartTime, and gtodAtStart unless an option
/// has set that. Without a readable uptime both stay as they are. Called once, after the options.
void calcTimeConversion();

/// Returns seconds of the recording's clock. Whole seconds and the rest are converted separately, so that
/// large times do not lose nanoseconds.
double time64ToDouble(unsigned long long nanoseconds);

/// Returns seconds since the epoch.
double timeToEpochBase(unsigned long long nanoseconds);

/// Returns seconds on the scale that timeConversionType selects.
double doTimeConversion(unsigned long long nanoseconds);

/// The same for a time of the ftrace text, in seconds. Only scale 4 supports it; on every other scale the
/// result is 0.0.
double doTimeConversion(double seconds);

/// Returns a converted time relative to gtodAtStart, the document's time zero.
double relativeToStart(double converted);

/// Returns whether a converted time is in the range selected by -s and -f.
bool isSelectedTime(double converted);
