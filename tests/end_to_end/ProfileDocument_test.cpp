#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "support/Conversion.h"
#include "support/TraceEvents.h"

namespace {

constexpr const char* kKernelSymbols =
    "c0008000 T stext\nc0008100 T schedule\nc0008200 t idle\nc000f000 T etext\n";

TEST(ProfileDocument, HoldsAllSectionsOfASmallRecording) {
  Conversion conversion;
  conversion.environment().set("CHIP", "chip \"9\"");
  conversion.kernelSymbols(kKernelSymbols);
  conversion.library("/app/tool",
                     "00010000 T main\tapp/main.c:3\n00010100 T work\tapp/main.c:9\n00010200 T abc\n");
  RecordingBuilder recording;
  recording.comm(7, 7, "tool").mmap(7, 7, 0x10000, 0x1000, "/app/tool");
  recording.sample({.ip = 0x10104, .pid = 7, .tid = 7, .time = 1500000000, .trace = {0x10104, 0x10008}});
  recording.sample({.ip = 0xC0008104, .pid = 7, .tid = 7, .time = 1750000000, .cpu = 1});
  recording.sample({.ip = 0x10200, .pid = 7, .tid = 7, .time = 1750000001, .cpu = 16});
  EXPECT_EQ(
      conversion.run(recording, {"-b", "5"}),
      R"({"Description":{"Version":"1.0","Target Chip":"chip \"9\"","Start Time":5,"First Sample Time":1.5,"duration":0.250000001},
 "processes": {
  "descriptions": {
   "key": "db key for this process element used in other structs as a reference",
   "pid": "The process id associated with this name",
   "tid": "The thread id",
   "name": "Name of the process with the pid and tid"
  },
  "data": [[1,0,0,"kernel",],[2,4294967295,4294967295,"lostAndFound",],[3,1,1,"*init*",],[4,7,7,"tool",],]},
 "libraries": {
  "descriptions": {
   "key": "db key for this process element used in other structs as a reference",
   "pidkey": "key or reference to the process",
   "name": "name of the library or function",
   "startAddress": "start address of this memory map",
   "sectionSize": "length of the memory map"
  },
  "data": [[2,2,"lostAndFound",0,0,],[3,1,"kernel",3221258240,28672,],[4,1,"{stack:b0000000-beffffff}",2952790016,251658239,],[5,4,"/app/tool",65536,4096,],]},
 "files": {
  "descriptions": {
   "key": "key for this symbol",
   "name": "name of this symbol",
   "symbols.ref": "ref to symbol using this file",
   "symbols.linenum": "ref to line number"
  },
  "data": [[1,"app/main.c",[[6,9,],[7,3,],],],]},
 "functions": {
  "descriptions": {
   "key": "key for this symbol",
   "name": "name of this symbol",
   "startAddress": "Base address of this function or symbol",
   "sectionSize": "Size of this function or symbol",
   "maps": "array of maps for this sample"
  },
  "data": [[8,"schedule",3221258496,256,[3,],],[7,"main",65536,256,[5,],],[6,"work",65792,256,[5,],],]},
 "samples": {
  "descriptions": {
   "key": "key or reference for this sample",
   "ip": "Location of sample, program counter",
   "mapkey": "reference to map entry",
   "time": "time stamp of the sample",
   "cpu": "which core the sample was taken on",
   "pidkey": "reference to the process element",
   "tid": "tid for this sample",
   "bt.ip": "backtrace program counter",
   "bt.mapkey": "backtrace map key"
  },
  "data": [[1,65796,6,1.5,0,4,7,[[65796,6,],[65544,7,],],],[2,3221258500,8,1.75,1,4,7,[],],[3,66048,6,1.750000001,16,4,7,[],],]}}
)");
}

TEST(ProfileDocument, OfAnEmptyRecordingHasEmptySections) {
  Conversion conversion;
  const std::string document = conversion.run(RecordingBuilder(), {"-b", "1", "-l"});
  EXPECT_EQ(document.substr(0, document.find("\n \"processes\"")),
            "{\n \"Description\": {\n  \"Version\": \"1.0\",\n  \"Target Chip\": \"unknown\",\n  \"Start "
            "Time\": 1,\n"
            "  \"First Sample Time\": 0,\n  \"duration\": 0\n },");
  EXPECT_EQ(rows(document, "processes"), "1,0,0,\"kernel\"\n2,4294967295,4294967295,\"lostAndFound\"\n");
  for (const char* section : {"libraries", "files", "functions", "samples"})
    EXPECT_EQ(rows(document, section), "");
}

TEST(ProfileDocument, HasNoDescriptionMembersWithoutLabels) {
  Conversion conversion;
  testing::internal::CaptureStderr();
  const std::string document = conversion.run(RecordingBuilder(), {"-b", "1", "-W"});
  EXPECT_EQ(document.substr(0, document.find("descriptions")), "{}{\n \"");
  EXPECT_NE(testing::internal::GetCapturedStderr().find("appendDouble() Invalid sequence. state: {"),
            std::string::npos);
}

TEST(ProfileDocument, FindsAProcessByBothIdsOrByOneThatIsNotZero) {
  Conversion conversion;
  RecordingBuilder recording;
  recording.comm(7, 7, "seven")
      .comm(7, 8, "thread")
      .comm(1, 1, "init")
      .comm(0, 8, "renamed (deleted)")
      .comm(7, 0, "main");
  recording.comm(0, 0, "swapper").comm(9, 9, "nine (deleted) x");
  recording.sample({.ip = 1, .pid = 7, .tid = 8})
      .sample({.ip = 1, .pid = 7, .tid = 99})
      .sample({.ip = 1, .pid = 50, .tid = 50});
  recording.sample({.ip = 1, .pid = 60, .tid = 60}).comm(60, 60, "late");
  const std::string document = conversion.run(recording, {"-b", "1"});
  EXPECT_EQ(rows(document, "processes"),
            "1,0,0,\"swapper\"\n2,4294967295,4294967295,\"lostAndFound\"\n3,1,1,\"init\"\n4,7,7,\"main\"\n"
            "5,7,8,\"renamed\"\n6,9,9,\"nine\"\n7,60,60,\"late\"\n");
  EXPECT_EQ(rows(document, "samples"),
            "1,1,0,0,0,5,8,[]\n2,1,0,0,0,4,99,[]\n3,1,0,0,0,2,50,[]\n4,1,0,0,0,7,60,[]\n");
}

TEST(ProfileDocument, ResolvesAddressesOfEveryClass) {
  Conversion conversion;
  conversion.kernelSymbols(kKernelSymbols);
  conversion.library("/app/tool", "10000 T main\n10100 T work\n10300 T stop\n");
  conversion.library("/lib/libx.so", "100 T first\n200 T second\n300 T third\n");
  RecordingBuilder recording;
  recording.comm(7, 7, "tool").comm(8, 8, "bare");
  recording.mmap(7, 7, 0x10000, 0x1000, "/app/tool").mmap(7, 7, 0x40000000, 0x1000, "/lib/libx.so (deleted)");
  recording.mmap(7, 7, 0x50000000, 0x1000, "/lib/unused.so");
  // main, the end of its map; the library relative to its start, its end; the stack; the kernel's bounds and
  // vectors.
  const std::vector<std::uint64_t> trace = {0x10050,    0x11000,    0x40000210, 0x40001000,
                                            0x40001001, 0xB0000000, 0xB0000001, 0xBEFFFFFF,
                                            0xC0008000, 0xC0008001, 0xFFFF0004, 0x9999};
  recording.sample({.ip = 0x20004, .pid = 7, .tid = 7, .trace = trace});
  recording.sample({.ip = 0x30004, .pid = 8, .tid = 8, .trace = {0x30004, 0x30008}});
  const std::string document = conversion.run(recording, {"-b", "1"});
  EXPECT_EQ(rows(document, "libraries"),
            "2,2,\"lostAndFound\",0,0\n3,1,\"kernel\",3221258240,28672\n4,1,\"{stack:b0000000-beffffff}\","
            "2952790016,251658239\n"
            "5,4,\"/app/tool\",65536,4096\n6,4,\"/lib/libx.so\",1073741824,4096\n7,4,\"/lib/"
            "unused.so\",1342177280,4096\n15,5,\"{bare-00030000}\",196608,65536\n");
  EXPECT_EQ(rows(document, "functions"),
            "13,\"stext\\n\",3221258240,256,[3,]\n14,\"*interrupt-FFFF0000*\",4294901760,65535,[3,]\n"
            "10,\"{tool-40000000}\",1073741824,65536,[6,]\n11,\"{tool-b0000000}\",2952790016,65536,[6,]\n"
            "12,\"{tool-c0000000}\",3221225472,65536,[6,]\n16,\"{tool-00020000}\",131072,65536,[7,]\n"
            "8,\"main\\n\",65536,256,[5,]\n9,\"second\",512,256,[6,]\n");
}

// The map of such an address also depends on the sample and on records in between.
TEST(ProfileDocument, DoesNotReuseCachedUnmappedAddresses) {
  Conversion conversion;
  conversion.kernelSymbols(kKernelSymbols);
  RecordingBuilder recording;
  const std::vector<std::uint64_t> trace = {0x90000004, 0x90000004};
  const auto sample = [&](std::uint64_t ip, unsigned int pid) {
    recording.sample({.ip = ip, .pid = pid, .tid = pid, .time = 1500000000, .trace = trace});
  };
  recording.comm(7, 7, "tool").mmap(7, 7, 0x10000, 0x1000, "/app/tool");
  for (const std::uint64_t ip : {0xC0008104U, 0x10004U, 0xC0008104U, 0xB0000004U}) sample(ip, 7);
  sample(0x10004, 9);
  recording.comm(9, 9, "late");
  sample(0x10004, 9);
  sample(0x10004, 7);
  recording.mmap(7, 7, 0x90000000, 0x1000, "/app/new");
  sample(0x10004, 7);
  EXPECT_EQ(rows(conversion.run(recording, {"-b", "5"}), "samples"),
            "1,3221258500,9,1.5,0,4,7,[[2415919108,3,],[2415919108,3,],]\n"
            "2,65540,5,1.5,0,4,7,[[2415919108,5,],[2415919108,5,],]\n"
            "3,3221258500,9,1.5,0,4,7,[[2415919108,3,],[2415919108,3,],]\n"
            "4,2952790020,4,1.5,0,4,7,[[2415919108,4,],[2415919108,4,],]\n"
            "5,65540,7,1.5,0,5,9,[[2415919108,2,],[2415919108,2,],]\n"
            "6,65540,7,1.5,0,5,9,[[2415919108,7,],[2415919108,7,],]\n"
            "7,65540,5,1.5,0,4,7,[[2415919108,5,],[2415919108,5,],]\n"
            "8,65540,5,1.5,0,4,7,[[2415919108,8,],[2415919108,8,],]\n");
}

TEST(ProfileDocument, DurationEndsAtTheLastSampleInTheFileNotTheLatestTime) {
  Conversion conversion;
  RecordingBuilder recording;
  for (const std::uint64_t seconds : {1U, 5U, 3U})
    recording.sample({.ip = 0x10000, .pid = 7, .tid = 7, .time = seconds * 1000000000});
  const std::string document = conversion.run(recording, {"-b", "1"});
  EXPECT_NE(document.find("\"First Sample Time\":1,\"duration\":2}"), std::string::npos);
}

TEST(ProfileDocument, NamesThePageOfAnUnknownThreadAfterItsProcess) {
  Conversion conversion;
  RecordingBuilder recording;
  recording.comm(7, 7, "tool").mmap(7, 7, 0x10000, 0x1000, "/none");
  recording.sample({.ip = 0x10004, .pid = 7, .tid = 99, .trace = {0x20004, 0x20008}});
  EXPECT_EQ(rows(conversion.run(recording, {"-b", "1"}), "functions"),
            "6,\"{tool-00020000}\",131072,65536,[2,]\n");
}

TEST(ProfileDocument, KeepsFifteenEntriesOfABackTrace) {
  Conversion conversion;
  RecordingBuilder recording;
  std::vector<std::uint64_t> trace;
  recording.comm(7, 7, "tool").mmap(7, 7, 0x10000, 0x10000, "/none");
  for (unsigned int depth = 0; depth < 18; ++depth) {
    recording.sample({.ip = 0x10000, .pid = 7, .tid = 7, .trace = trace});
    trace.push_back(0x10100 + depth);
  }
  recording.sample({.ip = 0x10000, .pid = 7, .tid = 7, .trace = {0x10001, 0x100}});
  recording.sample({.ip = 0x10000, .pid = 7, .tid = 7, .trace = {0x10001, 0x101}});
  const std::string samples = rows(conversion.run(recording, {"-b", "1"}), "samples");
  std::string expected;
  for (unsigned int depth = 0; depth < 18; ++depth) {
    expected += std::to_string(depth + 1) + ",65536,5,0,0,4,7,[";
    for (unsigned int i = 0; i < std::min(depth, 15U) && depth != 1; ++i)
      expected.append("[").append(std::to_string(0x10100 + i)).append(",5,],");
    expected += "]\n";
  }
  EXPECT_EQ(samples,
            expected + "19,65536,5,0,0,4,7,[[65537,5,],]\n20,65536,5,0,0,4,7,[[65537,5,],[257,2,],]\n");
}

TEST(ProfileDocument, HoldsManySamplesInTheirOrder) {
  Conversion conversion;
  conversion.kernelSymbols("c0000000 T start\nfffff000 T end\n");  // with a gap in between, and no symbol
  RecordingBuilder recording;
  recording.comm(7, 7, "tool").mmap(7, 7, 0x10000, 0x1000, "/app/tool");
  std::string expected;
  for (std::uint64_t i = 1; i <= 3000; ++i) {
    PlainSample sample{.ip = 0xC0000000 + i, .pid = 7, .tid = 7, .time = 1000000000 * i};
    std::string trace;
    for (std::uint64_t entry = 0; entry < 9; ++entry) {
      // Of every three entries one is new, one is repeated, and one has the largest number of digits.
      const std::uint64_t addresses[] = {0xC0000000 + 64 * i + entry, 0xC0000000 + entry, ~entry};
      sample.trace.push_back(addresses[entry % 3]);
      trace.append("[").append(std::to_string(sample.trace.back())).append(",3,],");
    }
    recording.sample(sample);
    expected += std::to_string(i) + "," + std::to_string(sample.ip) + ",3," + std::to_string(i) + ",0,4,7,[" +
                trace + "]\n";
  }
  EXPECT_EQ(rows(conversion.run(recording, {"-b", "0"}), "samples"), expected);
}

TEST(ProfileDocument, WithoutTheFirstInterruptReadsOneEntryTooFar) {
  Conversion conversion;
  RecordingBuilder recording;
  recording.comm(7, 7, "tool").mmap(7, 7, 0x10000, 0x10000, "/none");
  const auto sample = [&](std::vector<std::uint64_t> trace) {
    recording.sample({.ip = 0x10000, .pid = 7, .tid = 7, .trace = std::move(trace)});
  };
  sample({0x10001, 0x10002, 0x10003, 0x10004, 0x10005});  // what it leaves in the buffer is read below
  sample({0xFFFF0018, 0x10012, 0x10013});
  sample({0xFFFF0018});
  const std::string samples = rows(conversion.run(recording, {"-b", "1", "-I"}), "samples");
  EXPECT_EQ(samples.substr(samples.find("\n2,") + 1),
            "2,65536,5,0,0,4,7,[[65554,5,],[65555,5,],[65540,5,],]\n3,65536,5,0,0,4,7,[]\n");
}

TEST(ProfileDocument, MissesAMapSortedAfterThoseOfOtherThreads) {
  Conversion conversion;
  RecordingBuilder recording;
  recording.comm(7, 7, "tool");
  // Sorted by thread, searched by address: the low map of the last thread is on the wrong side.
  recording.mmap(7, 7, 0x50000, 0x1000, "/none/a")
      .mmap(7, 8, 0x60000, 0x1000, "/none/b")
      .mmap(7, 9, 0x20000, 0x1000, "/none/c");
  recording.sample({.ip = 0x20010, .pid = 7, .tid = 7}).sample({.ip = 0x60010, .pid = 7, .tid = 7});
  const std::string document = conversion.run(recording, {"-b", "1"});
  EXPECT_EQ(rows(document, "functions"), "8,\"{tool-00020000}\",131072,65536,[6,]\n");
  EXPECT_EQ(rows(document, "samples"), "1,131088,6,0,0,4,7,[]\n2,393232,6,0,0,4,7,[]\n");
}

TEST(ProfileDocument, TracePointSamplesAreCountedAndMarkSymbolsButHaveNoRow) {
  Conversion conversion;
  conversion.library("/app/tool", "10000 T main\n10100 T work\n10300 T stop\n");
  TraceBuilder recording;
  recording.comm(7, 7, "tool").mmap(7, 7, 0x10000, 0x1000, "/app/tool");
  recording.sample({.ip = 0x10004, .pid = 7, .tid = 7, .time = 1000000000});
  recording.at(2000000, 0, 7).value("power:cpu_idle", 0);
  recording.tracePoint({.event = 26, .time = 3000000000, .pid = 7, .ip = 0x10104}, Payload().u32(0).u32(0));
  recording.tracePoint({.event = 999, .time = 9000000000, .pid = 7, .ip = 0x10104}, Payload().u32(0).u32(0));
  recording.sample({.ip = 0x10004, .pid = 7, .tid = 7, .time = 2500000000});
  const std::string document = conversion.run(recording, {"-b", "1"});
  EXPECT_EQ(rows(document, "samples"), "1,65540,6,1,0,4,7,[]\n4,65540,6,2.5,0,4,7,[]\n");
  EXPECT_EQ(rows(document, "functions"), "6,\"main\\n\",65536,256,[5,]\n7,\"work\",65792,512,[5,]\n");
}

TEST(ProfileDocument, SubtractsTheStartTimeOnEveryScale) {
  const std::pair<std::vector<std::string>, const char*> cases[] = {
      {{"-r", "-s", "1"}, "1.5"}, {{"-s", "1"}, "1000001.5"},
      {{"-z", "-s", "1"}, "-1"},  {{"-c", "2", "-g", "3", "-q", "-s", "1"}, "7"},
      {{"-b", "7"}, "2.5"},       {{"-b", "nan"}, "nan"},
      {{"-b", "inf"}, "nan"},     {{"-r", "-b", "-1e300"}, "1.000000e+300"}};
  for (const auto& [options, time] : cases) {
    // One process per case: a second conversion would find the records of the first.
    EXPECT_EXIT(
        {
          Conversion conversion;
          RecordingBuilder recording;
          recording.comm(7, 7, "t").sample({.ip = 1, .pid = 7, .tid = 7, .time = 2500000000});
          const std::string samples = rows(conversion.run(recording, options), "samples");
          std::fprintf(stderr, "%s", samples.c_str());
          std::exit(samples == std::string("1,1,0,") + time + ",0,4,7,[]\n" ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
  }
}

TEST(ProfileDocument, EndsOnFatalErrorsOnly) {
  const Conversion folder;
  folder.write("empty", "");
  folder.write("short", std::string(20, '\1'));
  const std::string out = folder.path("out.json");
  const auto run = [&](const std::string& input) {
    return folder.runProgram({"-b", "1", "-i", input, "-o", out});
  };
  const std::pair<std::string, const char*> cases[] = {{folder.path("missing"), "ERROR: Bad In File Name\n"},
                                                       {"", "ERROR: Bad In File Name\n"},
                                                       {folder.path("empty"), "ERROR: Invalid In File\n"},
                                                       {folder.path("root"), "ERROR: Invalid In File\n"}};
  for (const auto& [input, message] : cases)
    EXPECT_EXIT(
        {
          dup2(2, 1);
          run(input);
        },
        testing::ExitedWithCode(255), message);
  EXPECT_EXIT(std::exit(run(folder.path("short"))), testing::ExitedWithCode(0), "");
  EXPECT_NE(readFile(out), "");
}

}  // namespace
