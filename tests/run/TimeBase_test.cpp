#include "run/TimeBase.h"

#include <gtest/gtest.h>
#include <sys/time.h>

#include "run/Settings.h"
#include "support/Conversion.h"

namespace {

/// Returns the seconds since the epoch.
double now() {
  timeval clock{};
  gettimeofday(&clock, nullptr);
  return static_cast<double>(clock.tv_sec) + static_cast<double>(clock.tv_usec) / 1000000.0;
}

TEST(TimeBase, MeasuresWhenTheMachineBooted) {
  const Conversion folder;
  folder.write("uptime", "5000.25 9.5\n");
  const double before = now();
  calcTimeConversion();
  EXPECT_GE(gtodAtStart, before);
  EXPECT_LE(gtodAtStart, now());
  EXPECT_NEAR(gtodAtStart - systemStartTime, 5000.25, 1e-5);
  timeConversionType = 1;
  EXPECT_EQ(doTimeConversion(2500000000ULL), 2.5 + systemStartTime);
  EXPECT_EQ(timeToEpochBase(2500000000ULL), 2.5 + systemStartTime);
}

TEST(TimeBase, KeepsAStartTimeThatAnOptionSet) {
  const Conversion folder;
  folder.write("uptime", "no number");
  gtodAtStart = 7.0;
  const double before = now();
  calcTimeConversion();
  EXPECT_EQ(gtodAtStart, 7.0);
  EXPECT_GE(systemStartTime, before);  // an uptime of 0
  EXPECT_LE(systemStartTime, now());
}

TEST(TimeBase, IsUnchangedWithoutAnUptime) {
  const Conversion folder;
  calcTimeConversion();
  EXPECT_EQ(systemStartTime, 0.0);
  EXPECT_EQ(gtodAtStart, 0.0);
}

}  // namespace
