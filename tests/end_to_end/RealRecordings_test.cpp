#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "support/Conversion.h"
#include "support/RawRecording.h"
#include "support/Recordings.h"

namespace {

constexpr std::uint32_t kSample = 9;

long lines(const std::string& text) {
  return std::count(text.begin(), text.end(), '\n');
}

/// The addresses of the back-trace that a document is to hold for a plain sample.
std::vector<std::uint64_t> expectedTrace(const RawRecord& record) {
  const std::uint32_t nr = record.u32(48);
  std::vector<std::uint64_t> trace;
  for (std::uint32_t i = 0; nr != 1 && i < std::min(nr, 15U); ++i) trace.push_back(record.u64(56 + 8 * i));
  if (!trace.empty() && trace.back() <= 0x100) trace.pop_back();
  return trace;
}

/// The part of a row that does not depend on the machine's symbols: its address, and those of its back-trace.
std::string addresses(const std::string& row) {
  std::string result = row.substr(row.find(',') + 1);
  result.resize(result.find(','));
  for (std::size_t open = row.find("[["); open != std::string::npos; open = row.find(",[", open + 1))
    result.append(" ").append(row, row.find_first_of("0123456789", open),
                              row.find(',', open + 2) - row.find_first_of("0123456789", open));
  return result;
}

TEST(RealRecordings, CallGraphConvertsWithEveryBackTrace) {
  RECORDING_OR_SKIP(file, "perf.data.callgraph-3.4");
  std::string expected;
  for (const RawRecord& record : rawRecords(readFile(file))) {
    if (record.type != kSample || record.bytes.size() > 256) continue;
    expected += std::to_string(record.u64(8));
    for (const std::uint64_t address : expectedTrace(record))
      expected.append(" ").append(std::to_string(address));
    expected += "\n";
  }
  Conversion conversion;
  const std::string samples = rows(conversion.runFile(file, {"-b", "5"}), "samples");
  std::string found;
  for (std::size_t start = 0; start < samples.size(); start = samples.find('\n', start) + 1)
    found += addresses(samples.substr(start, samples.find('\n', start) - start)) + "\n";
  EXPECT_GT(lines(expected), 1000);
  EXPECT_EQ(found, expected);
}

TEST(RealRecordings, SamplesWithOtherFieldsAreConvertedSafely) {
  for (const char* name : {"perf.data.armv7-3.4", "perf.data.i686-3.4", "perf.data.singleprocess-3.4"}) {
    RECORDING_OR_SKIP(file, name);
    // A word above 16 after the time makes a sample a trace-point sample, for which there is no event.
    long plain = 0;
    for (const RawRecord& record : rawRecords(readFile(file)))
      plain += record.type == kSample && record.u32(32) <= 16 ? 1 : 0;
    EXPECT_EXIT(
        {
          Conversion conversion;
          std::exit(lines(rows(conversion.runFile(file, {"-b", "5"}), "samples")) == plain ? 0 : 1);
        },
        testing::ExitedWithCode(0), "")
        << name;
  }
}

TEST(RealRecordings, ArmGuestShowsItsFunctionsByName) {
  RECORDING_OR_SKIP(file, "arm32/cpu-clock-g.data");
  Conversion conversion;
  conversion.useRealNm();
  conversion.kernelSymbols(readFile(std::string(ZELCONV_RECORDINGS) + "/arm32/kallsyms"));
  const std::string document =
      conversion.runFile(file, {"-b", "5", "-p", std::string(ZELCONV_RECORDINGS) + "/arm32/rootfs"});
  const std::string functions = rows(document, "functions");
  for (const char* name : {"busy", "work", "__irq", "schedule"})
    EXPECT_NE(functions.find(name), std::string::npos) << name;
}

TEST(RealRecordings, ExampleIsResolvedByTheRealNm) {
  Conversion conversion;
  conversion.useRealNm();
  const std::string document =
      conversion.runFile(ZELCONV_EXAMPLES "/profile.data", {"-b", "5", "-p", ZELCONV_EXAMPLES});
  EXPECT_EQ(lines(rows(document, "samples")), 600);
  const std::string functions = rows(document, "functions");
  for (const char* name :
       {"pick_apple", "walk_rows", "meadow::mow(int, int)", "meadow::count_bees(int)", "-2a000000}"})
    EXPECT_NE(functions.find(name), std::string::npos) << name;
}

}  // namespace
