#include "run/TimeBase.h"

#include <sys/time.h>

#include <cstdio>

#include "base/MachineFiles.h"
#include "base/TargetNumbers.h"
#include "records/PerfRecordSample.h"
#include "run/Settings.h"

namespace {

constexpr unsigned long long kNanosecondsPerSecond = 1000000000;

double onLoomstatScale(double seconds) {
  const double scaled = asOnTarget(seconds * timestampScaler, seconds, timestampScaler);
  return asOnTarget(scaled + timestampOffset, scaled, timestampOffset);
}

}  // namespace

void calcTimeConversion() {
  // Stays open, as it always has, and occupies the lowest free descriptor. Otherwise a run without standard
  // input would open its recording as descriptor 0, which PerfReader takes for a closed file.
  std::FILE* file = std::fopen(gMachineFiles.uptime.c_str(), "re");
  if (file == nullptr) return;
  double uptime = 0.0;
  if (std::fscanf(file, "%lf", &uptime) != 1) uptime = 0.0;

  timeval clock{};
  gettimeofday(&clock, nullptr);
  const double now = static_cast<double>(clock.tv_sec) + static_cast<double>(clock.tv_usec) / 1000000.0;
  systemStartTime = now - uptime;
  if (gtodAtStart == 0.0) gtodAtStart = now;
}

double time64ToDouble(unsigned long long nanoseconds) {
  const unsigned long long seconds = nanoseconds / kNanosecondsPerSecond;
  return static_cast<double>(seconds) +
         static_cast<double>(nanoseconds % kNanosecondsPerSecond) / 1000000000.0;
}

double timeToEpochBase(unsigned long long nanoseconds) {
  return time64ToDouble(nanoseconds) + systemStartTime;
}

double doTimeConversion(unsigned long long nanoseconds) {
  const double seconds = time64ToDouble(nanoseconds);
  switch (timeConversionType) {
    case 0:
      return seconds;
    case 1:
      return seconds + systemStartTime;
    case 2:
      return seconds + baseTime;
    case 3:
      return seconds - PerfRecordSample::_firstSampleTime;
    case 4:
      return onLoomstatScale(seconds);
    default:
      return 0.0;
  }
}

double doTimeConversion(double seconds) {
  return timeConversionType == 4 ? onLoomstatScale(seconds) : 0.0;
}

double relativeToStart(double converted) {
  return asOnTarget(converted - gtodAtStart, converted, gtodAtStart);
}

bool isSelectedTime(double converted) {
  return !gSelectiveProcessing || !(converted < gtodAtStart || converted > gtodAtStop);
}
