// Tests the verbs on the command line: their files, output and exit status.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "kit/support/ModernRecording.h"
#include "kit/support/ProfileFigures.h"
#include "kit/support/TestFolder.h"
#include "kit/support/TracingData.h"
#include "kit/support/Zelkit.h"
#include "symbols/ElfFile.h"

namespace {

/// Two plain samples and a trace-point of a board.
ModernRecording bothKinds() {
  ModernRecording recording;
  recording.event({}).event({.config = 1, .id = 2, .name = "task-clock"});
  recording.event({.type = 2,
                   .config = 20,
                   .sampleType = ModernRecording::kSampleType | ModernRecording::kRaw,
                   .id = 3,
                   .name = "irq:softirq_entry"});
  recording.textFeature(3, "board").textFeature(4, "6.1.0").textFeature(6, "armv7l");
  recording.feature(1, tracingData("irq", {formatText("softirq_entry", 20, {{"unsigned int vec", 8, 4}})}));
  recording.at(0).comm(7, 7, "tool").mmap(7, 0xB6000000, 0x1000, 0, "/lib/x.so");
  recording.at(1'500'000'000).sample({.ip = 0xB6000010, .pid = 7, .tid = 7, .cpu = 1});
  recording.at(1'600'000'000).sample({.ip = 0xB6000020, .pid = 7, .tid = 7, .id = 2});
  recording.at(1'700'000'000)
      .sample({.pid = 7, .tid = 7, .cpu = 1, .id = 3, .raw = Bytes().u32(20).u32(7).u32(3).u64(0).str()});
  return recording;
}

class Verbs : public testing::Test {
 protected:
  /// Runs zelkit; "%" stands for the folder, also in the output.
  ProgramRun run(std::string arguments, const std::string& preparation = ":") {
    for (std::size_t at = 0; (at = arguments.find('%')) != std::string::npos;)
      arguments.replace(at, 1, folder.path(""));
    ProgramRun run = runZelkit(arguments, preparation);
    for (std::size_t at = 0; (at = run.said.find(folder.path(""))) != std::string::npos;)
      run.said.replace(at, folder.path("").size(), "%");
    return run;
  }
  std::vector<std::string> files() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path("")))
      names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
  }

  TestFolder folder;
};

TEST_F(Verbs, ConvertMakesDocumentsOfBothKindsOnOneTimeScale) {
  folder.write("perf.data", bothKinds().build());
  const ProgramRun done = run("convert %perf.data -o %x.json --report %report.json");
  EXPECT_EQ(done.status, 0);
  EXPECT_EQ(files(), (std::vector<std::string>{"perf.data", "report.json", "x.json", "x.json.layout.json",
                                               "x.timechart.json"}));
  EXPECT_NE(done.said.find("%x.json: 1 of 3 samples\n"), std::string::npos) << done.said;
  EXPECT_NE(done.said.find("1 left out: of another event: task-clock"), std::string::npos) << done.said;
  EXPECT_NE(done.said.find("%x.timechart.json: 1 of 3 samples\n"), std::string::npos) << done.said;
  EXPECT_NE(done.said.find("say --event task-clock"), std::string::npos) << done.said;
  EXPECT_EQ(ProfileFigures(folder.path("x.json")).firstTime, 1.5);
  EXPECT_NE(folder.read("x.timechart.json").find("1.7"), std::string::npos);
  EXPECT_EQ(folder.read("x.json.layout.json"),
            R"({
 "Version": "1.0",
 "depth": 15,
 "mappings": [
  {
   "pid": 7,
   "start": "0x40000000",
   "size": "0x1000",
   "original": "0xb6000000",
   "file": "/lib/x.so"}]}
)");
  EXPECT_EQ(folder.read("report.json").find("\"balanced\": false"), std::string::npos);
  EXPECT_EQ(runCommand("jq . " + folder.path("report.json") + " >/dev/null || ! command -v jq").status, 0);
}

TEST_F(Verbs, ConvertUsesTheRequestedEventAndMode) {
  folder.write("perf.data", bothKinds().build());
  EXPECT_EQ(run("convert %perf.data -o %x.json --mode profile --event task-clock -- -b 1").status, 0);
  EXPECT_EQ(ProfileFigures(folder.path("x.json")).firstTime, 1.6);
  EXPECT_EQ(run("convert %perf.data -o %t.json --mode timechart").status, 0);
  EXPECT_EQ(files(), (std::vector<std::string>{"perf.data", "t.json", "x.json", "x.json.layout.json"}));
}

TEST_F(Verbs, ConvertTellsWhichDebugFileWouldNameFunctions) {
  ASSERT_EQ(runCommand("strip -o " + folder.path("tool") + " " ZELKIT_FIXTURE).status, 0);
  const std::string hidden = runCommand("nm -C " ZELKIT_FIXTURE " | sed -n 's/ t fixture::hidden.*//p'").said;
  ModernRecording recording;
  recording.event({}).comm(7, 7, "tool").mmap(7, 0x10000000, 0x100000, 0, "/bin/tool");
  recording.sample({.ip = 0x10000000 + std::stoull(hidden, nullptr, 16), .pid = 7, .tid = 7});
  folder.write("perf.data", recording.build());
  const std::string convert = "convert %perf.data -o %x.json --symbols %";
  const std::string hint = "1 samples in functions that the stripped /bin/tool does not name";
  EXPECT_NE(run(convert).said.find(hint), std::string::npos) << run(convert).said;
  const std::string id = zelkit::ElfFile::read(folder.path("tool")).buildId;
  const std::string place = folder.path(".build-id/") + id.substr(0, 2);
  std::filesystem::create_directories(place);
  ASSERT_EQ(
      runCommand("objcopy --only-keep-debug " ZELKIT_FIXTURE " " + place + '/' + id.substr(2) + ".debug")
          .status,
      0);
  EXPECT_EQ(run(convert).said.find("functions"), std::string::npos) << run(convert).said;
}

TEST_F(Verbs, InfoShowsWhatIsInARecording) {
  folder.write("perf.data", bothKinds().build());
  const ProgramRun told = run("info %perf.data");
  EXPECT_EQ(told.status, 0);
  for (const char* line :
       {"host         board\n", "event        cpu-clock: 1 samples\n",
        "event        type 2 config 20: 1 samples, for the timechart\n",
        "time         0.200000 s, from 1.500000\n", "converts to  a profile of 1 samples\n",
        "converts to  a timechart of 1 trace-points\n"})
    EXPECT_NE(told.said.find(line), std::string::npos) << line << told.said;
}

TEST_F(Verbs, ImportWritesAReadableRecording) {
  folder.write("perf.data", bothKinds().build());
  ASSERT_EQ(run("import %perf.data -o %old.data").status, 0);
  EXPECT_EQ(run("import %old.data -o %older.data").status, 0);
  EXPECT_EQ(run("convert %older.data -o %x.json").status, 0);
  EXPECT_EQ(ProfileFigures(folder.path("x.json")).firstTime, 1.5);
}

TEST_F(Verbs, EndWithTheDocumentedStatus) {
  const std::string good = bothKinds().build();
  folder.write("perf.data", good);
  folder.write("text", "#!/bin/sh\n");
  folder.write("cut", good.substr(0, good.size() / 2 + 100));
  ModernRecording nothing;
  nothing.event({}).comm(7, 7, "tool");
  folder.write("nothing", nothing.build());
  std::filesystem::create_directory(folder.path("empty"));
  std::filesystem::create_directory(folder.path("capture"));
  folder.write("capture/perf.data", good);
  folder.write("capture/kallsyms", "c0008000 T start\n");
  folder.write("old.json.layout.json", good);
  ASSERT_EQ(std::system(
                ("tar -cf " + folder.path("capture.tar") + " -C " + folder.path("") + " perf.data").c_str()),
            0);
  const struct {
    const char* arguments;
    int status;
    const char* said;
  } cases[] = {
      {"convert", 1, "RECORDING is required"},
      {"convert %perf.data --depth 200", 1, "--depth"},
      {"convert %perf.data --mode neither", 1, "--mode"},
      {"top %perf.data --by colour", 1, "--by"},
      {"import %perf.data", 1, "-o is required"},
      {"convert %perf.data -- -i x", 1, "zelkit: -i: zelkit sets this option itself\n"},
      {"convert %perf.data -o %x.json -- --nonsense", 1, "ERROR: Bad option"},
      {"convert %perf.data -o %x.json --event cycles", 2,
       "%perf.data: no event cycles; there are: cpu-clock, "},
      {"convert %missing -o %x.json", 2, "zelkit: %missing: No such file or directory\n"},
      {"convert %text -o %x.json", 2, "zelkit: %text: not a recording: it does not start with PERFILE2\n"},
      {"convert %empty -o %x.json", 2, "perf.data"},
      {"convert %perf.data -o %perf.data", 2,
       "%perf.data: is the input itself, which writing would destroy\n"},
      {"convert %capture.tar -o %capture.tar", 2, "%capture.tar: is the input itself"},
      {"convert %capture -o %capture/kallsyms", 2, "%capture/kallsyms: is the input itself"},
      {"convert %perf.data --machine %capture -o %capture/kallsyms", 2, "kallsyms: is the input itself"},
      {"convert %old.json.layout.json -o %old.json", 2, "%old.json.layout.json: is the input itself"},
      {"convert %perf.data -o %x.json --report %perf.data", 2, "%perf.data: is the input itself"},
      {"convert %capture -o %x.json --report %capture/kallsyms", 2, "%capture/kallsyms: is the input itself"},
      {"convert %perf.data -o %x.json --report %empty/../x.json", 2,
       "x.json: is another output of this run\n"},
      {"convert %perf.data -o %x.json --report %x.json.layout.json", 2, "is another output of this run\n"},
      {"convert %perf.data -o %x.json --report %none/x", 2, "%none/x: No such file or directory\n"},
      {"import %perf.data -o %x.data --report %perf.data", 2, "%perf.data: is the input itself"},
      {"import %perf.data -o %x.data --report %x.data", 2, "%x.data: is another output of this run\n"},
      {"convert %capture.tar -o %x.json --event cycles", 2, "%capture.tar:perf.data: no event cycles"},
      {"import %perf.data -o %perf.data", 2,
       "%perf.data: is the input itself, which writing would destroy\n"},
      {"import %perf.data -o %none/x", 2, "%none/x: No such file or directory\n"},
      {"convert %perf.data -o /dev/full", 2, "zelkit: /dev/full: is not a regular file\n"},
      {"convert %nothing -o %x.json", 3, "%nothing: nothing to show; see zelkit info\n"},
      {"import %nothing -o %x.data", 3, "0 of 0 samples"},
      {"info %nothing", 3, "converts to  nothing"},
      {"convert %perf.data --machine %none -o %x.json", 2, "%none: "},
      {"info %cut", 0, "damaged      the file is truncated: "},
  };
  const std::vector<std::string> before = files();
  for (const auto& tried : cases) {
    const ProgramRun ended = run(tried.arguments);
    EXPECT_EQ(ended.status, tried.status) << tried.arguments << "\n" << ended.said;
    EXPECT_NE(ended.said.find(tried.said), std::string::npos) << tried.arguments << "\n" << ended.said;
    EXPECT_EQ(files(), before) << tried.arguments;
  }
  EXPECT_EQ(folder.read("perf.data"), good);
}

TEST_F(Verbs, KeepOldFilesIfTheNewOnesCannotBeWritten) {
  folder.write("perf.data", bothKinds().build());
  folder.write("old", "precious");
  const std::vector<std::string> before = files();
  for (const char* arguments : {"convert %perf.data -o %old", "import %perf.data -o %old"}) {
    const ProgramRun ended = run(arguments, "trap '' XFSZ; ulimit -f 0");
    EXPECT_EQ(ended.status, 2) << arguments << "\n" << ended.said;
    EXPECT_NE(ended.said.find("%old: File too large\n"), std::string::npos) << arguments << "\n"
                                                                            << ended.said;
    EXPECT_EQ(files(), before) << arguments;
    EXPECT_EQ(folder.read("old"), "precious") << arguments;
  }
}

}  // namespace
