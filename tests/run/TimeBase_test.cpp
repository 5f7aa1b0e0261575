#include "run/TimeBase.h"

#include <gtest/gtest.h>

#include <ctime>

#include "run/Settings.h"
#include "support/Conversion.h"

namespace {

/// Tolerance, as the clock runs during a test.
constexpr double kSeconds = 30.0;

TEST(TimeBase, MeasuresWhenTheMachineBooted) {
  const Conversion folder;
  folder.write("uptime", "5000.25 9.5\n");
  const auto now = static_cast<double>(std::time(nullptr));
  calcTimeConversion();
  EXPECT_NEAR(systemStartTime, now - 5000.25, kSeconds);
  EXPECT_NEAR(gtodAtStart, now, kSeconds);
  EXPECT_NEAR(gtodAtStart - systemStartTime, 5000.25, 1e-5);
  timeConversionType = 1;
  EXPECT_EQ(doTimeConversion(2500000000ULL), 2.5 + systemStartTime);
  EXPECT_EQ(timeToEpochBase(2500000000ULL), 2.5 + systemStartTime);
}

TEST(TimeBase, KeepsAStartTimeThatAnOptionSet) {
  const Conversion folder;
  folder.write("uptime", "no number");
  gtodAtStart = 7.0;
  calcTimeConversion();
  EXPECT_EQ(gtodAtStart, 7.0);
  EXPECT_NEAR(systemStartTime, static_cast<double>(std::time(nullptr)), kSeconds);  // an uptime of 0
}

TEST(TimeBase, IsUnchangedWithoutAnUptime) {
  const Conversion folder;
  calcTimeConversion();
  EXPECT_EQ(systemStartTime, 0.0);
  EXPECT_EQ(gtodAtStart, 0.0);
}

}  // namespace
