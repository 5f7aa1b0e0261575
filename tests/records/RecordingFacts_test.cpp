#include "records/RecordingFacts.h"

#include <gtest/gtest.h>

#include "records/SampleLayout.h"
#include "support/Conversion.h"

namespace {

// Bits of the header's features and of sample_type, as perf's file format and linux/perf_event.h have them.
constexpr unsigned int kOsRelease = 4;
constexpr unsigned int kArchitecture = 6;

RecordingBuilder described() {
  RecordingBuilder recording;
  recording.attribute(1, 0, 0x1A7).attribute(2, 300, 0x1A7).comm(1, 1, "one").mmap(1, 1, 0, 1, "/lib/a.so");
  recording.mmap(2, 2, 0, 1, "/other/a.so").mmap(2, 2, 0, 1, "/bin/b (deleted)").mmap(2, 2, 0, 1, "[heap]");
  recording.textFeature(kOsRelease, "6.1.0-arm").textFeature(kArchitecture, "armv7l");
  return recording.eventNames({"cpu-clock", "sched:x"});
}

TEST(RecordingFacts, AreReadFromTheHeader) {
  const Conversion folder;
  described().save(folder.path("perf.data"));
  const std::optional<RecordingFacts> facts = readRecordingFacts(folder.path("perf.data"));
  ASSERT_TRUE(facts);
  EXPECT_EQ(facts->format, RecordingFacts::Format::recording);
  EXPECT_EQ(facts->release + " " + facts->architecture, "6.1.0-arm armv7l");
  ASSERT_EQ(facts->events.size(), 2U);
  EXPECT_EQ(facts->events[0].name + " " + facts->events[1].name, "cpu-clock sched:x");
  EXPECT_EQ(facts->events[1].type, 2U);
  EXPECT_EQ(facts->events[1].config, 300U);
  EXPECT_EQ(facts->events[1].sampleType, 0x1A7U);
  EXPECT_FALSE(facts->hasEventTable || facts->isCompressed);
  EXPECT_EQ(countMappedFiles(folder.path("perf.data"), *facts), 2U);
}

TEST(RecordingFacts, DamagedHeadersDoNoHarm) {
  const Conversion folder;
  const std::string whole = described().build();
  const auto look = [&](const std::string& bytes) {
    folder.write("perf.data", bytes);
    const auto facts = readRecordingFacts(folder.path("perf.data"));
    ASSERT_TRUE(facts);
    EXPECT_LE(countMappedFiles(folder.path("perf.data"), *facts), 4U);
  };
  for (std::size_t size = 0; size <= whole.size(); size += 3) look(whole.substr(0, size));
  // Each number of the header, of the places of the features and of their contents becomes huge.
  for (std::size_t place = 0; place + 8 <= whole.size(); place += 4)
    for (const std::uint64_t number : {~std::uint64_t{0}, std::uint64_t{0xFFFFFFF0}}) {
      std::string damaged = whole;
      look(damaged.replace(place, 8, Bytes().u64(number).str()));
    }
}

TEST(RecordingFacts, OnlyRegularFilesAreRead) {
  const Conversion folder;
  EXPECT_FALSE(readRecordingFacts("/dev/null"));
  EXPECT_FALSE(readRecordingFacts(folder.path("")));
  EXPECT_FALSE(readRecordingFacts(folder.path("missing")));
}

TEST(SampleLayout, NamesTheFirstMisplacedField) {
  struct Case {
    std::uint32_t type;
    std::uint64_t sampleType;
    const char* fields;
    const char* fault;
  };
  const Case cases[] = {
      {1, 0x1A7, "ip, tid, time, callchain, cpu, period", ""},
      {2, 0x4C7, "ip, tid, time, id, cpu, raw", ""},
      {1, 0x5A7, "ip, tid, time, callchain, cpu, period, raw", ""},
      {0, 0x1E7, "ip, tid, time, callchain, id, cpu, period", "the id is where the core is read"},
      {2, 0x105C7, "ip, tid, time, id, cpu, period, raw, identifier",
       "the identifier is where the address is read"},
      {2, 0x587, "ip, tid, time, cpu, period, raw", "the cpu is where the stream is read"},
      {2, 0x5C7, "ip, tid, time, id, cpu, period, raw", "the period is where the raw data is read"},
      {1, 0x187, "ip, tid, time, cpu, period", "nothing is where the back-trace is read"},
      {1, 0x8000000000000000, "field 63", "nothing is where the address is read"},
  };
  for (const Case& one : cases) {
    EXPECT_EQ(sampleFields(one.sampleType), one.fields);
    EXPECT_EQ(misplacedField({"", one.type, 0, one.sampleType}), one.fault) << one.fields;
  }
}

}  // namespace
