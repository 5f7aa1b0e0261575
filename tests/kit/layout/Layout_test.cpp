#include "layout/Layout.h"

#include <gtest/gtest.h>

#include "kit/support/ModernRecording.h"
#include "kit/support/RecordText.h"
#include "recording/Recording.h"

namespace {

using zelkit::Account;
using zelkit::FileKnowledge;
using zelkit::Layout;
using zelkit::LayoutChoice;
using zelkit::Recording;

constexpr std::uint64_t kKernelMarker = ~0ULL - 127;
constexpr std::uint64_t kUserMarker = ~0ULL - 511;

ModernRecording onArm() {
  ModernRecording recording;
  recording.event({}).textFeature(6, "armv7l");
  return recording;
}

struct Laid {
  std::string records;
  Account account;
  std::size_t largest;
};

/// Lays out a recording and checks that every sample is in the output or counted as lost.
Laid lay(const ModernRecording& builder, LayoutChoice choice = {.event = 0},
         FileKnowledge* knowledge = nullptr) {
  Recording recording("test", builder.build());
  RecordText text;
  Layout layout(recording.info(), std::move(choice), knowledge, text);
  recording.walk(layout);
  EXPECT_TRUE(layout.account().balanced());
  EXPECT_TRUE(recording.damage().empty());
  return {text.str(), layout.account(), text.largest};
}

std::string records(const ModernRecording& builder) {
  return lay(builder).records;
}

TEST(Layout, MovesEveryFileToItsOwnRange) {
  ModernRecording recording = onArm();
  recording.comm(7, 7, "tool");
  recording.mmap(7, 0x42A00000, 0x2000, 0, "/bin/pie");             // a library to zelconv
  recording.mmap(7, 0xB6D10000, 0x5000, 0x1000, "/lib/second.so");  // in the stack's class, second segment
  recording.mmap(7, 0xB6E00000, 0x1000, 0, "/lib/untouched.so");
  recording.sample({.ip = 0x42A00010, .pid = 7, .tid = 7, .chain = {kUserMarker, 0x42A00010, 0xB6D10020}});
  EXPECT_EQ(records(recording),
            "comm 7/7 tool\n"
            "mmap 7 40000000+2000 /bin/pie\n"
            "mmap 7 40010000+6000 /lib/second.so\n"
            "sample 40000010 of 7/7 cpu 0: 40000010 40011020\n");
}

TEST(Layout, DoesNotMoveProgramsAtTheirLinkAddress) {
  ModernRecording recording = onArm();
  recording.comm(7, 7, "a").comm(65543, 65543, "b");
  for (const unsigned int pid : {7U, 65543U}) recording.mmap(pid, 0x10000, 0x4000, 0, "/bin/static");
  recording.sample({.ip = 0x10010, .pid = 7, .tid = 7}).sample({.ip = 0x10010, .pid = 65543, .tid = 65543});
  // The second one shares 16 bits of its id with the first.
  EXPECT_EQ(records(recording),
            "comm 7/7 a\ncomm 65543/65543 b\n"
            "mmap 7 10000+4000 /bin/static\nsample 10010 of 7/7 cpu 0:\n"
            "mmap 65543 40000000+14000 /bin/static\nsample 40010010 of 65543/65543 cpu 0:\n");
}

TEST(Layout, AChildInheritsMappingsUntilItsExec) {
  ModernRecording recording = onArm();
  recording.comm(7, 7, "sh").mmap(7, 0xB6000000, 0x1000, 0, "/lib/a.so");
  recording.at(2000).fork(8, 7, 8, 7);
  recording.at(2100).sample({.ip = 0xB6000010, .pid = 8, .tid = 8});
  recording.at(2200).comm(8, 8, "tool", true);
  recording.at(2300).sample({.ip = 0xB6000010, .pid = 8, .tid = 8});
  recording.at(2400).mmap(8, 0xB6000000, 0x1000, 0, "/lib/b.so");
  recording.at(2500).sample({.ip = 0xB6000010, .pid = 8, .tid = 8});
  recording.at(2600).fork(8, 8, 9, 8).sample({.ip = 0xB6000020, .pid = 8, .tid = 9});
  EXPECT_EQ(records(recording),
            "comm 7/7 sh\n"
            "comm 8/8 sh\nmmap 8 40000000+1000 /lib/a.so\nsample 40000010 of 8/8 cpu 0:\n"
            "comm 8/8 tool\n"
            "sample b6000010 of 8/8 cpu 0:\n"
            "mmap 8 40010000+1000 /lib/b.so\nsample 40010010 of 8/8 cpu 0:\n"
            "comm 8/9 tool\nsample 40010020 of 8/9 cpu 0:\n");
}

TEST(Layout, DistinguishesFilesMappedAtOneAddressInTurn) {
  ModernRecording recording = onArm();
  recording.comm(7, 7, "t");
  const char* const files[] = {"/a.so", "/b.so", "/a.so"};
  for (unsigned int i = 0; i < 3; ++i)
    recording.at(2000 + i)
        .mmap(7, 0xB6000000, 0x1000, 0, files[i])
        .sample({.ip = 0xB6000010, .pid = 7, .tid = 7});
  EXPECT_EQ(records(recording),
            "comm 7/7 t\n"
            "mmap 7 40000000+1000 /a.so\nsample 40000010 of 7/7 cpu 0:\n"
            "mmap 7 40010000+1000 /b.so\nsample 40010010 of 7/7 cpu 0:\n"
            "sample 40000010 of 7/7 cpu 0:\n");
}

TEST(Layout, DistinguishesJitCodeByItsAddress) {
  ModernRecording recording = onArm();
  recording.comm(7, 7, "js")
      .mmap(7, 0x7F0000002000, 0x1000, 0, "//anon")
      .mmap(7, 0x7F0000009000, 0x1000, 0, "//anon");
  recording.sample({.ip = 0x7F0000002040, .pid = 7, .tid = 7})
      .sample({.ip = 0x7F0000009040, .pid = 7, .tid = 7});
  EXPECT_EQ(records(recording),
            "comm 7/7 js\n"
            "mmap 7 40000000+1000 /tmp/perf-7.map:7f0000002000\nsample 40000040 of 7/7 cpu 0:\n"
            "mmap 7 40010000+1000 /tmp/perf-7.map:7f0000009000\nsample 40010040 of 7/7 cpu 0:\n");
}

TEST(Layout, DoesNotMoveUnmappedAndKernelAddresses) {
  ModernRecording recording = onArm();
  recording.comm(7, 7, "t").mmap(7, 0xB6000000, 0x1000, 0, "/a.so");
  recording.sample(
      {.ip = 0x40000010, .pid = 7, .tid = 7});  // not moved, and its surroundings are not allocated
  recording.sample({.ip = 0xB6000010, .pid = 7, .tid = 7});
  recording.sample({.ip = 0x40010020, .pid = 7, .tid = 7});  // would lie in the range of /a.so
  recording.sample({.ip = 0xC0008000,
                    .pid = 7,
                    .tid = 7,
                    .chain = {kKernelMarker, 0xC0008000, 0xB6000020, kUserMarker, 0xB6000020},
                    .mode = 1});
  EXPECT_EQ(records(recording),
            "comm 7/7 t\nsample 40000010 of 7/7 cpu 0:\n"
            "mmap 7 40010000+1000 /a.so\nsample 40010010 of 7/7 cpu 0:\n"
            "sample 40020020 of 7/7 cpu 0:\n"
            "sample c0008000 of 7/7 cpu 0: c0008000 b6000020 40010020\n");
}

TEST(Layout, KeepsSamplesWithDeepTracesHighCoresAndLongNames) {
  ModernRecording recording = onArm();
  const std::string path = "/" + std::string(300, 'd') + "/lib/" + std::string(100, 'n') + ".so";
  recording.comm(7, 7, std::string(400, 'c')).mmap(7, 0xB6000000, 0x1000, 0, path);
  recording.sample(
      {.ip = 0xB6000010, .pid = 7, .tid = 7, .cpu = 40, .chain = std::vector<std::uint64_t>(60, 0xB6000010)});
  const Laid laid = lay(recording);
  EXPECT_EQ(laid.largest, zelkit::OldRecords::kLargest);
  EXPECT_EQ(laid.account.plainSamplesOut, 1U);
  EXPECT_EQ(laid.account.cutTraces, 1U);
  EXPECT_EQ(laid.account.cutEntries, 35U);
  EXPECT_EQ(laid.account.highCores, 1U);
  EXPECT_NE(laid.records.find("mmap 7 40000000+1000 .../lib/" + std::string(100, 'n') + ".so\n"),
            std::string::npos);
  EXPECT_NE(laid.records.find(" cpu 16:"), std::string::npos);
  std::string whole;
  for (int i = 0; i < 60; ++i) whole += " 40000010";
  EXPECT_NE(lay(recording, {.event = 0, .depth = 127}).records.find(whole + "\n"), std::string::npos);
}

TEST(Layout, CountsTracePointsThatNoChartOfCoresShows) {
  ModernRecording recording = onArm();
  recording.event({.type = 2,
                   .config = 300,
                   .sampleType = ModernRecording::kSampleType | ModernRecording::kRaw,
                   .id = 3,
                   .name = "x:y"});
  for (const std::uint32_t cpu : {15U, 16U, 40U})
    recording.sample({.ip = 1, .cpu = cpu, .id = 3, .raw = "0123"});
  LayoutChoice choice{.event = 0};
  choice.payloads = [](const zelkit::Sample&, std::uint16_t&, std::string& raw) {
    raw = "0123";
    return true;
  };
  const Account account = lay(recording, choice).account;
  EXPECT_EQ(account.tracePointsOut, 3U);
  EXPECT_EQ(account.highTracePoints, 2U);
  EXPECT_EQ(account.highCores, 0U);
}

TEST(Layout, CountsChildrenWhoseMappingsWouldTakeTooMuchMemory) {
  ModernRecording recording = onArm();
  for (std::uint64_t i = 0; i < 2000; ++i) recording.mmap(7, 0xB0000000 + i * 0x2000, 0x1000, 0, "/lib/a.so");
  constexpr std::uint32_t last = 1101;
  for (std::uint32_t child = 100; child < last; ++child)
    recording.fork(child, 7, child, 7).mmap(child, 0x42000000, 0x1000, 0, "/lib/own.so");
  for (const std::uint64_t address : {0xB0000010UL, 0x42000020UL})
    for (const std::uint32_t child : {100U, last - 1})
      recording.sample({.ip = address, .pid = child, .tid = child});
  const Laid laid = lay(recording);
  EXPECT_EQ(laid.account.plainSamplesOut, 4U);
  EXPECT_EQ(laid.account.cutLineages, 2U);
  // What a child without its parent's mappings maps itself is known.
  EXPECT_NE(laid.records.find("sample b0000010 of 1100/"), std::string::npos);
  EXPECT_EQ(laid.records.find("sample b0000010 of 100/"), std::string::npos);
  EXPECT_EQ(laid.records.find("sample 42000020 of 1100/"), std::string::npos);
}

TEST(Layout, CountsDroppedRecords) {
  ModernRecording recording = onArm();
  recording.event({.config = 1, .id = 2, .name = "task-clock"});
  recording.event({.type = 2,
                   .config = 300,
                   .sampleType = ModernRecording::kSampleType | ModernRecording::kRaw,
                   .id = 3,
                   .name = "x:y"});
  recording.sample({.ip = 1}).sample({.ip = 1, .id = 2}).sample({.ip = 1, .id = 3, .raw = "0123"});
  recording.record(2, 0, Bytes().u64(1).u64(5).str()).record(14, 0, "");
  recording.record(9, 2, Bytes().u64(1).u64(2).str()).record(9, 2, Bytes().u64(99).u64(2).str());
  LayoutChoice choice{.event = 0};
  choice.payloads = [](const zelkit::Sample&, std::uint16_t&, std::string&) { return false; };
  const Account account = lay(recording, choice).account;
  EXPECT_EQ(account.samplesIn, 5U);
  EXPECT_EQ(account.samplesLost,
            (Account::Tally{{"damaged, or of an unknown event", 2},
                            {"of a trace-point that no chart shows: type 2 config 300", 1},
                            {"of another event: task-clock", 1}}));
  EXPECT_EQ(account.recordsLostByKernel, 5U);
  EXPECT_EQ(account.dropped.at("type 14: not shown in documents"), 1U);
}

/// Knows one file, whose second segment is not mapped at its offset.
class OneFile : public FileKnowledge {
 public:
  std::optional<Link> linkOf(const zelkit::MappedPiece& piece) override {
    ++asked;
    if (piece.path != "/lib/lld.so") return std::nullopt;
    return Link{piece.offset + 0x10000, 0x23000, false, false};
  }
  const char* whyUnnamed(const zelkit::MappedFile&, std::uint64_t address) override {
    return address == 0x12010 ? nullptr : "none there";
  }
  const char* whyKernelUnnamed(std::uint64_t) override { return "no table"; }
  int asked = 0;
};

TEST(Layout, UsesTheProgramHeadersOfAnAvailableFile) {
  ModernRecording recording = onArm();
  recording.comm(7, 7, "t")
      .mmap(7, 0xB6000000, 0x1000, 0x2000, "/lib/lld.so")
      .mmap(7, 0xB7000000, 0x1000, 0, "/never");
  recording.sample({.ip = 0xB6000010, .pid = 7, .tid = 7}).sample({.ip = 0xB6000020, .pid = 7, .tid = 7});
  recording.sample({.ip = 0xC0000000, .mode = 1});
  OneFile knowledge;
  const Laid laid = lay(recording, {.event = 0, .countsNames = true}, &knowledge);
  EXPECT_EQ(laid.records,
            "comm 7/7 t\nmmap 7 40000000+23000 /lib/lld.so\n"
            "sample 40012010 of 7/7 cpu 0:\nsample 40012020 of 7/7 cpu 0:\nsample c0000000 of 0/0 cpu 0:\n");
  EXPECT_EQ(laid.account.unnamed, (Account::Tally{{"no table", 1}, {"none there", 1}}));
  ASSERT_EQ(laid.account.moved.size(), 1U);
  EXPECT_EQ(laid.account.moved[0].start, 0x40012000U);
  EXPECT_EQ(laid.account.moved[0].original, 0xB6000000U);
  EXPECT_EQ(knowledge.asked, 1);  // only for files hit by samples
}

TEST(Layout, KeepsSamplesWhenThereAreNoRangesLeft) {
  ModernRecording recording = onArm();
  recording.comm(7, 7, "t");
  for (std::uint64_t i = 0; i < 5; ++i) {
    recording.mmap(7, 0x100000000 * (i + 1), 0x20000000, 0, "/huge" + std::to_string(i));
    recording.sample({.ip = 0x100000000 * (i + 1) + 4, .pid = 7, .tid = 7});
  }
  const Laid laid = lay(recording);
  EXPECT_EQ(laid.account.plainSamplesOut, 5U);
  EXPECT_EQ(laid.account.noPlace, (Account::Tally{{"/huge3", 1}, {"/huge4", 1}}));
}

}  // namespace
