#include <gtest/gtest.h>

#include "support/Conversion.h"
#include "support/RawRecording.h"

namespace {

/// A recording with every kind of record.
std::string recording() {
  RecordingBuilder builder;
  builder.event(5, "sched:sched_switch").event(6, "irq:irq_handler_entry").event(7, "task:task_rename");
  builder.event(8, "kgsl:kgsl_clk");
  builder.comm(7, 7, "tool").mmap(7, 7, 0x10000, 0x1000, "/app/tool");
  builder.sample(
      {.ip = 0x10104, .pid = 7, .tid = 7, .time = 1500000000, .trace = {0x10104, 0x20008, 0x40000000}});
  const TracePoint at{.event = 5, .time = 1600000000, .cpu = 1, .pid = 7};
  builder.tracePoint(at, Payload().text("a", 16).u32(7).u32(0).u32(2).text("b", 16).u32(8).u32(0));
  builder.tracePoint({.event = 6, .time = 1600000000}, Payload().u32(3).located("timer"));
  builder.tracePoint({.event = 7, .time = 1600000000}, Payload().u32(8).text("old", 16).text("new", 16));
  builder.tracePoint({.event = 8, .time = 1600000000}, Payload().located("kgsl-3d0").u32(1));
  return builder.build();
}

/// The conversions to try: all of them, or every few, where a run is slow.
constexpr std::size_t kStride = ZELCONV_DAMAGE_STRIDE;

TEST(Damage, SurvivesTruncationAnywhere) {
  const Conversion folder;
  folder.library("/app/tool", "10000 T main\n10100 T work\n10300 T stop\n");
  const std::string whole = recording();
  ASSERT_TRUE(folder.runApart(whole, {"-t"}).endedWell);
  for (std::size_t size = 0; size < whole.size(); size += kStride)
    for (const char* mode : {"-t", "-w"})
      EXPECT_TRUE(folder.runApart(whole.substr(0, size), {"-b", "1", mode, "-v", "1"}).endedWell) << size;
}

TEST(Damage, SurvivesAnyInvertedByte) {
  const Conversion folder;
  folder.library("/app/tool", "10000 T main\n10100 T work\n10300 T stop\n");
  const std::string whole = recording();
  const auto dataStart = static_cast<std::size_t>(RawRecord{0, whole.substr(0, 56)}.u64(40));
  for (std::size_t place = 0; place < whole.size(); place += kStride) {
    std::string damaged = whole;
    damaged[place] = static_cast<char>(~damaged[place]);
    const Ending ending = folder.runApart(damaged, {"-b", "1", place % 2 == 0 ? "-t" : "-w", "-v", "1"});
    // Only damage before the records can set an event number that aborts the run.
    EXPECT_TRUE(ending.endedWell || (place < dataStart && ending.aborted)) << place;
  }
}

}  // namespace
