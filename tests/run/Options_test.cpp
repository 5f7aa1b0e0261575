#include "run/Options.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <limits>

#include "base/PerfFoundation.h"
#include "base/TargetNumbers.h"
#include "run/Settings.h"
#include "run/TimeBase.h"
#include "symbols/FileNames.h"

namespace {

void parse(std::vector<std::string> words) {
  words.insert(words.begin(), "zelconv");
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  optind = 0;
  parseOptions(static_cast<int>(words.size()), argv.data());
}

TEST(Options, SetTheirSettings) {
  parse({"-W", "-l", "-I", "-i", "in", "-oout", "-p", "/a",     "-p", "/b", "-e",  "-q",
         "-R", "-d", "-v", "2x", "-m", "-t",    "-S", "server", "-P", "1",  "rest"});
  EXPECT_FALSE(addJSONWhiteSpace);
  EXPECT_TRUE(addJSONLabels && gRmFirstInterrupt && gShowMarkers && gTimechartMode);
  EXPECT_EQ(inFileName + " " + outFileName + " " + symPath, "in out /:/a:/b");
  EXPECT_EQ(timeConversionType, 4);
  EXPECT_FALSE(gReadable);
  EXPECT_TRUE(PerfFoundation::_bypassDestructor);
  EXPECT_EQ(gVerbosity, 2U);
  EXPECT_EQ(FileNames::_ogServer + " " + FileNames::_ogProtocol, "server 1");
  EXPECT_FALSE(FileNames::_ogFunctionOnlyLookup);  // the second -P is never reached
  parse({"-w", "-L", "-D", "-z", "-v", "-1"});
  EXPECT_TRUE(addJSONWhiteSpace && !addJSONLabels && !PerfFoundation::_bypassDestructor);
  EXPECT_EQ(timeConversionType, 3);
  EXPECT_EQ(gVerbosity, 0xFFFFFFFFU);
}

TEST(Options, InvertsTheRangeWithTheScaleGivenSoFar) {
  parse({"-c", "2", "-g", "100", "-s", "120.9", "-f", "130"});
  EXPECT_TRUE(gSelectiveProcessing);
  EXPECT_EQ(gtodAtStart, 120.9);
  EXPECT_EQ(gtodAtStop, 130.0);
  EXPECT_EQ(gFirstTimestampToProcess, 9000000000U);
  EXPECT_EQ(gLastTimestampToProcess, 16000000000U);
  parse({"-s", "99", "-f", "nonsense"});
  EXPECT_EQ(gFirstTimestampToProcess, 0ULL - 1000000000U);  // a negative time wraps below zero
  EXPECT_EQ(gtodAtStop, 0.0);
  EXPECT_EQ(gLastTimestampToProcess, 1000000000U);
}

TEST(Options, BaseTimeIsTheDocumentsTimeZero) {
  parse({"-b", "nonsense"});
  EXPECT_EQ(gtodAtStart, 1000000.0);
  parse({"-b", "12.5"});
  EXPECT_EQ(baseTime, 12.5);
  EXPECT_EQ(gtodAtStart, 12.5);
}

TEST(Options, HelpEndsTheRunAndShowsAllRows) {
  EXPECT_EXIT(
      {
        dup2(2, 1);
        parse({"-h", "-?"});
      },
      testing::ExitedWithCode(0),
      "^Usage:  zelconv <options>\n   w - add white space(.|\n)*   P - Server protocol(.|\n)*   P - File "
      "only lookup "
      "for opengrok default:false\n$");
}

TEST(Options, AnUnknownOptionOrAMissingArgumentEndsTheRun) {
  for (const char* option : {"-x", "-i"})
    EXPECT_EXIT(
        {
          dup2(2, 1);
          parse({option});
        },
        testing::ExitedWithCode(255), "ERROR: Bad option passed use -h for help\n");
}

TEST(TimeBase, ConvertsOnEveryScale) {
  baseTime = 1000000.0;
  systemStartTime = 70.0;
  timestampScaler = 2.0;
  timestampOffset = 0.25;
  const double expected[] = {5.5, 75.5, 1000005.5, 5.5, 11.25, 0.0};
  for (timeConversionType = 0; timeConversionType <= 5; ++timeConversionType) {
    EXPECT_EQ(doTimeConversion(5500000000ULL), expected[timeConversionType]);
    EXPECT_EQ(doTimeConversion(5.5), timeConversionType == 4 ? 11.25 : 0.0);
  }
  EXPECT_EQ(time64ToDouble(1999999999), 1.0 + 0.999999999);
}

TEST(TargetNumbers, EqualThoseOfA32BitTarget) {
  const std::pair<const char*, int> numbers[] = {{"2147483647", 2147483647},
                                                 {"2147483648", 2147483647},
                                                 {"-2147483649", -2147483647 - 1},
                                                 {"99999999999999999999", 2147483647},
                                                 {"  +12x", 12},
                                                 {"x", 0},
                                                 {"", 0}};
  for (const auto& [text, value] : numbers) EXPECT_EQ(targetStrtol(text), value) << text;
  EXPECT_EQ(truncateToUnsigned64(-1.0), 0U);
  EXPECT_EQ(truncateToUnsigned64(NAN), 0U);
  EXPECT_EQ(truncateToUnsigned64(1e30), ~0ULL);
  EXPECT_EQ(truncateToSigned64(-1e30), std::numeric_limits<long long>::min());
  const auto isNegative = [](double result, double left, double right) {
    return std::signbit(asOnTarget(result, left, right));
  };
  EXPECT_FALSE(isNegative(INFINITY - INFINITY, INFINITY, INFINITY));
  EXPECT_TRUE(isNegative(NAN, -NAN, NAN));
  EXPECT_FALSE(isNegative(-NAN, NAN, -NAN));
  EXPECT_TRUE(isNegative(NAN, 1.0, -NAN));
}

}  // namespace
