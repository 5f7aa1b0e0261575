// Adversarial recordings: each must end in a documented way, in bounded time and memory, with a document that
// can be read back.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>

#include "json/JSONData.h"
#include "support/Conversion.h"
#include "support/TraceEvents.h"

namespace {

// Far above what these small recordings need, even under sanitizers.
constexpr long kMostMegabytes = 600;

class Hostile : public testing::Test {
 protected:
  Hostile() {
    _folder.kernelSymbols("c0008000 T stext\nc0008100 T schedule\nc000f000 T etext\n");
    _folder.library("/app/tool", "10000 T main\n10100 T work\n10300 T stop\n");
  }

  void convert(const std::string& recording, const std::vector<std::string>& options) const {
    const Ending ending = _folder.runApart(recording, options);
    EXPECT_TRUE(ending.endedWell) << "signal " << ending.signal;
    EXPECT_LT(ending.peakMegabytes, kMostMegabytes);
    std::ifstream file(_folder.path("out"), std::ios::binary);
    loomstat::JSONData document;
    EXPECT_TRUE(document.setFromStream(file));
    EXPECT_EQ(file.get(), '\n');
  }

  void convertBothWays(const RecordingBuilder& recording) const {
    const std::string bytes = recording.build();
    convert(bytes, {"-b", "5"});
    convert(bytes, {"-b", "5", "-t"});
    convert(bytes, {"-b", "5", "-I", "-l", "-v", "1"});
  }

  Conversion _folder;
};

std::string header(unsigned int type, unsigned int size) {
  return Bytes().u32(type).u16(0).u16(size).str();
}

TEST_F(Hostile, SizesOfRecords) {
  RecordingBuilder recording;
  for (const unsigned int type : {0U, 1U, 3U, 9U, 16U, 17U, 0xFFFFFFFFU})
    for (const unsigned int size : {0U, 1U, 7U, 8U, 11U, 12U, 255U, 256U, 257U, 65535U})
      recording.bytes(header(type, size)).comm(type, size, "next");
  recording.bytes(header(9, 256));
  convertBothWays(recording);
}

TEST_F(Hostile, NamesOfEveryLengthAndByte) {
  RecordingBuilder recording;
  std::string everyByte;
  for (int byte = 1; byte < 256; ++byte) everyByte += static_cast<char>(byte);
  for (const std::string& name :
       {std::string(), std::string(200, 'x'), std::string(200, '/'), everyByte.substr(0, 128),
        everyByte.substr(128), std::string("'; $(touch owned) `id` | \"\n")}) {
    const std::string body = Bytes().u32(7).u32(7).append(name).str();  // without a NUL
    recording.record(3, body);
    recording.record(1, Bytes().u32(7).u32(7).u64(0x10000).u64(0x100).u64(0).append(name).str());
    recording.sample({.ip = 0x10010, .pid = 7, .tid = 7, .time = 1, .trace = {0x10010, 0x10020}});
    recording.event(5, name);
  }
  convertBothWays(recording);
}

TEST_F(Hostile, EveryEventWithEveryCpuAndExtremeFields) {
  for (const unsigned int cpu : {0U, 15U, 16U, 17U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
    TraceBuilder trace;
    for (const char* name : kTraceEvents)
      for (const std::uint64_t field : {0ULL, 1ULL, 16ULL, 0x7FFFFFFFULL, 0x80000000ULL, 0xFFFFFFFFULL}) {
        Payload payload;
        for (int i = 0; i < 14; ++i) payload.u32(field);
        trace.at(field, cpu, static_cast<unsigned int>(field)).add(name, payload);
        trace.add(name, Payload());
      }
    convertBothWays(trace);
  }
}

TEST_F(Hostile, TextsLocatedAtAndBeyondTheEnd) {
  TraceBuilder trace;
  for (const std::uint64_t place : {0U, 7U, 8U, 51U, 52U, 971U, 972U, 1023U, 1024U, 0xFFFFU})
    for (const char* name :
         {"irq:irq_handler_entry", "kgsl:kgsl_rail", "kgsl:kgsl_clk", "kgsl:kgsl_issueibcmds"})
      trace.at(place, 0).add(name, Payload().u32(place | 0xFFFF0000).u32(place).u32(0).u32(0));
  for (std::size_t length = 0; length <= 8; ++length)
    trace.gpu("kgsl:kgsl_pwrlevel", std::string("kgsl-3d0").substr(0, length), 0, 450000000);
  convertBothWays(trace);
}

TEST_F(Hostile, MapsThatWrapOverlapOrAreEmpty) {
  constexpr std::uint64_t last = ~0ULL;
  RecordingBuilder recording;
  recording.comm(7, 7, "tool");
  for (const std::uint64_t start :
       {std::uint64_t{0}, std::uint64_t{0x10000}, std::uint64_t{0x10080}, last - 15, last})
    for (const std::uint64_t length : {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{0x100}, last})
      for (const unsigned int tid : {7U, 8U}) recording.mmap(7, tid, start, length, "/app/tool");
  for (const std::uint64_t ip : {std::uint64_t{0}, std::uint64_t{0x10080}, std::uint64_t{0x90000000}, last})
    recording.sample({.ip = ip, .pid = 7, .tid = 7, .time = 1, .trace = {ip, last, 0x10100, 1}});
  convertBothWays(recording);
}

TEST_F(Hostile, ThousandsOfMapsAndProcesses) {
  RecordingBuilder recording;
  for (unsigned int i = 0; i < 10000; ++i) {
    recording.mmap(7, 7, 0x50000000 - i * 64, 64, "/app/tool");
    recording.comm(i, i + i % 3, "task").sample({.ip = 0x60000000, .pid = i, .tid = i, .time = i});
  }
  for (unsigned int i = 0; i < 10000; ++i)
    recording.sample({.ip = 0x50000000 - i * 64, .pid = 7, .tid = 7, .time = i});
  convertBothWays(recording);
}

TEST_F(Hostile, MapsOfPipesDevicesAndFolders) {
  ASSERT_EQ(mkfifo(_folder.path("root/app/pipe").c_str(), 0600), 0);  // to open it would wait for a writer
  RecordingBuilder recording;
  for (const char* name :
       {"/app/pipe", "/dev/zero", "/dev/tty", "/app", "/", "", "//", "/app/tool/", "/app/../app/tool"})
    recording.mmap(7, 7, 0x10000, 0x1000, name).sample({.ip = 0x10104, .pid = 7, .tid = 7, .time = 1});
  convertBothWays(recording);
}

TEST_F(Hostile, BackTracesLongerThanTheirRecord) {
  RecordingBuilder recording;
  recording.mmap(7, 7, 0x10000, 0x1000, "/app/tool");
  for (const std::uint64_t count : {1ULL, 2ULL, 15ULL, 16ULL, 0xFFFFFFFFULL, ~0ULL})
    recording.record(
        9, Bytes().u64(0x10004).u32(7).u32(7).u64(1).u32(0).u32(0).u64(1).u64(count).u64(0x10004).str());
  convertBothWays(recording);
}

TEST_F(Hostile, TimesAtTheEdgesOnEveryScale) {
  TraceBuilder trace;
  trace.mmap(7, 7, 0x10000, 0x1000, "/app/tool");
  for (const std::uint64_t time :
       {std::uint64_t{0}, ~std::uint64_t{0}, std::uint64_t{1} << 63, std::uint64_t{1}}) {
    trace.sample({.ip = 0x10004, .pid = 7, .tid = 7, .time = time});
    TracePoint point{.event = 20, .time = time, .cpu = 1, .pid = 7};
    trace.tracePoint(point, Payload().text("a", 16).u32(7).u32(0).u32(2).text("b", 16).u32(8).u32(0));
    point.event = 27;  // a frequency, which has the longest points
    trace.tracePoint(point, Payload().u32(0xFFFFFFFF).u32(1));
  }
  for (const std::vector<std::string>& scale :
       {std::vector<std::string>{"-r"}, {"-z"}, {"-e"}, {"-q"}, {"-b", "5"}, {"-q", "-c", "2", "-g", "-1e9"}})
    for (const char* mode : {"-t", "-w"}) {
      std::vector<std::string> options = scale;
      options.emplace_back(mode);
      convert(trace.build(), options);
    }
}

TEST_F(Hostile, EventNumbersAndTablesOfEverySize) {
  for (const std::uint64_t number : {0ULL, 3999ULL, 4000ULL, 4001ULL, 0x7FFFFFFFULL, 0x80000000ULL,
                                     0xFFFFFFFFULL, 0x100000000ULL, ~0ULL}) {
    RecordingBuilder recording;
    recording.event(number, "sched:sched_switch").event(number / 2, std::string(64, 'x'));
    const Ending ending = _folder.runApart(recording.build(), {"-b", "5"});
    EXPECT_TRUE(ending.endedWell || ending.aborted) << number;
    EXPECT_LT(ending.peakMegabytes, kMostMegabytes) << number;
  }
  // A data section before the attributes makes the count of the table's entries wrap.
  std::string wrapped = TraceBuilder().at(1, 0).wakeup(7).build();
  wrapped.replace(40, 8, Bytes().u64(16).str());
  const Ending ending = _folder.runApart(wrapped, {"-b", "5"});
  EXPECT_TRUE(ending.endedWell || ending.aborted);
}

TEST_F(Hostile, CounterTypesOfNothingButBrackets) {
  constexpr std::size_t megabytes = 2;
#ifdef ZELCONV_SANITIZED
  constexpr long mostTimes = 100;  // a sanitizer surrounds each piece, and retains freed ones
#else
  constexpr long mostTimes = 40;
#endif
  _folder.environment().set("ZELVIEW_CONFIG", _folder.path("config"));
  _folder.environment().set("DOCUMENT_ROOT", _folder.path("www"));
  _folder.write("config/plotx/activeCounters", "11\n");
  const std::string recording = TraceBuilder().at(1, 0).wakeup(7).build();
  const auto peakWith = [&](const std::string& types) {
    _folder.write("www/configx/cfgx-types.json", types);
    const Ending ending = _folder.runApart(recording, {"-b", "5", "-t"});
    EXPECT_TRUE(ending.endedWell) << "signal " << ending.signal;
    return ending.peakMegabytes;
  };
  struct Case {
    std::string opening;
    std::string closing;
  };
  const Case cases[] = {{"[", ""},     {"{\"\":", ""}, {"[{\"\":", ""}, {"[", "]"}, {"[{\"\":", "}]"},
                        {"[[],", "]"}, {"[],", ""},    {"\"\",", ""},   {"1,", ""}};
  const long peakOfOne = peakWith("[");
  for (const Case& each : cases) {
    std::string types = "[";
    std::string end;
    while (types.size() + end.size() < megabytes << 20) {
      types += each.opening;
      end += each.closing;
    }
    EXPECT_LE(peakWith(types + end) - peakOfOne, mostTimes * static_cast<long>(megabytes)) << each.opening;
  }
}

}  // namespace
