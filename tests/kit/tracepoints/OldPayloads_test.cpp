#include "tracepoints/OldPayloads.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "kit/support/TracingData.h"
#include "recording/Bytes.h"

namespace {

using zelkit::OldPayloads;
using zelkit::RecordingInfo;

/// A recording that has one trace-point.
struct OnePoint {
  OnePoint(const std::string& system, const std::string& format, std::uint64_t id)
      : data(tracingData(system, {formatText("other", 1, {}), format})) {
    info.tracingData = data;
    info.events.push_back({.type = 2, .config = id});
  }
  std::string data;
  RecordingInfo info;
};

std::string commonHeader(int id, unsigned int pid) {
  return Bytes().u16(static_cast<unsigned int>(id)).u8(1).u8(0).u32(pid).str();
}

struct Made {
  bool done = false;
  std::uint16_t number = 0;
  std::string raw;
};

Made make(const OnePoint& point, const std::string& raw) {
  const OldPayloads payloads(point.info);
  EXPECT_FALSE(payloads.damaged());
  Made made;
  made.done = payloads.make(0, raw, made.number, made.raw);
  return made;
}

TEST(OldPayloads, FindFieldsByName) {
  // As a 64-bit kernel has it: a wide state, and names in another order.
  const OnePoint point("sched",
                       formatText("sched_switch", 316,
                                  {{"char next_comm[16]", 8, 16},
                                   {"pid_t next_pid", 24, 4},
                                   {"long prev_state", 32, 8},
                                   {"char prev_comm[16]", 40, 16},
                                   {"pid_t prev_pid", 56, 4}}),
                       316);
  const std::string raw = Bytes()
                              .append(commonHeader(316, 5))
                              .text("after", 16)
                              .u32(22)
                              .u32(0)
                              .u64(2)
                              .text("before-and-more", 16)
                              .u32(11)
                              .str();
  const Made made = make(point, raw);
  ASSERT_TRUE(made.done);
  EXPECT_EQ(made.number, 1);
  const std::string expected = Bytes()
                                   .append(commonHeader(316, 5))
                                   .text("before-and-more", 16)
                                   .u32(11)
                                   .u32(0)
                                   .u32(2)
                                   .text("after", 16)
                                   .u32(22)
                                   .u32(0)
                                   .str();
  EXPECT_EQ(made.raw, expected);
  for (std::size_t size = 0; size < raw.size(); ++size)
    EXPECT_FALSE(make(point, raw.substr(0, size)).done) << size;
}

TEST(OldPayloads, MoveTextsAndTheirLocations) {
  for (const bool isRelative : {false, true}) {
    const OnePoint point(
        "irq",
        formatText(
            "irq_handler_entry", 20,
            {{"int irq", 8, 4}, {(isRelative ? "__rel_loc char[] name" : "__data_loc char[] name"), 12, 4}}),
        20);
    const unsigned int offset = isRelative ? 4 : 20;
    const std::string raw =
        Bytes().append(commonHeader(20, 0)).u32(9).u32(offset | 6U << 16).u32(0).append("mmc0").u8(0).str();
    const Made made = make(point, raw);
    ASSERT_TRUE(made.done);
    EXPECT_EQ(made.raw,
              Bytes().append(commonHeader(20, 0)).u32(9).u32(16 | 5U << 16).append("mmc0").u8(0).str());
    std::string outside = raw;
    outside[12] = '\x7F';
    EXPECT_EQ(make(point, outside).raw,
              Bytes().append(commonHeader(20, 0)).u32(9).u32(16 | 1U << 16).u8(0).str());
  }
}

TEST(OldPayloads, UseTheRunningTaskForARenameWithoutPid) {
  const OnePoint point("task", formatText("task_rename", 80, {{"char newcomm[16]", 8, 16}}), 80);
  const Made made = make(point, commonHeader(80, 42) + Bytes().text("new", 16).str());
  ASSERT_TRUE(made.done);
  EXPECT_EQ(zelkit::numberAt<std::uint32_t>(made.raw, 8), 42U);
  EXPECT_EQ(made.raw.substr(28, 4), std::string("new\0", 4));
}

TEST(OldPayloads, RefuseOtherEvents) {
  const OnePoint point("sched", formatText("sched_stat_runtime", 300, {}), 300);
  EXPECT_FALSE(make(point, commonHeader(300, 0)).done);
  EXPECT_TRUE(OldPayloads(point.info).table().empty());
}

TEST(OldPayloads, ReadTheFormatsBeforeADamage) {
  const std::string whole = tracingData(
      "irq", {formatText("softirq_entry", 30, {{"unsigned int vec", 8, 4}}), "name: x\nID: 31\n"});
  std::size_t found = 0;
  for (std::size_t size = 0; size < whole.size(); ++size) {
    bool damaged = false;
    found =
        std::max(found, zelkit::readEventFormats(std::string_view(whole).substr(0, size), damaged).size());
    EXPECT_TRUE(damaged) << size;
  }
  EXPECT_EQ(found, 1U);
  for (std::size_t i = 0; i < whole.size(); ++i) {
    std::string flipped = whole;
    flipped[i] = static_cast<char>(~flipped[i]);
    bool damaged = false;
    EXPECT_LE(zelkit::readEventFormats(flipped, damaged).size(), 2U);
  }
}

}  // namespace
