#include "run/TerminalReport.h"

#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/utsname.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>

#include "base/MachineFiles.h"
#include "run/ProgressLine.h"
#include "support/Conversion.h"
#include "support/Terminal.h"
#include "support/TraceEvents.h"

namespace {

constexpr unsigned int kOsRelease = 4;
constexpr unsigned int kArchitecture = 6;
constexpr unsigned int kCompressed = 27;
constexpr const char* kNothingLost = ", 0 trace-points decoded, 0 bytes lost, 0 samples lost by the kernel\n";

/// A profile of two samples, one of them in a function that has a name.
RecordingBuilder profileOfTwo() {
  RecordingBuilder recording;
  recording.comm(7, 7, "app").mmap(7, 7, 0x10000, 0x1000, "/bin/app");
  return recording.sample({0x10010, 7, 7, 1000}).sample({0x900000, 7, 7, 2000});
}

std::string traceOf(const std::string& release, const std::string& architecture) {
  TraceBuilder trace;
  trace.at(1, 0).wakeup(3);
  trace.textFeature(kOsRelease, release).textFeature(kArchitecture, architecture);
  return trace.build();
}

struct Case {
  std::string recording;
  std::vector<std::string> arguments;  ///< after -b 1 -i perf.data -o perf.json
  std::string expected;
  int status = 0;
  const char* kernel = nullptr;  ///< kern_ver and ARM64
  const char* wide = nullptr;
};

/// Returns the text that stays on the terminal: on a busy machine progress may appear and be erased.
std::string lasting(const std::string& text) {
  std::string kept;
  for (const char c : text) {
    if (c == '\r') {
      kept.erase(kept.rfind('\n') + 1);
    } else {
      kept += c;
    }
  }
  return kept;
}

/// Returns whether the system reports that a program is missing. An emulated processor does not: it starts a
/// process that ends at once.
bool missingProgramsShow() {
  pid_t process = 0;
  char name[] = "no-such-program";
  char* argv[] = {name, nullptr};
  if (posix_spawnp(&process, name, nullptr, nullptr, argv, environ) != 0) return true;
  waitpid(process, nullptr, 0);
  return false;
}

class TerminalReports : public testing::Test {
 protected:
  TerminalReports() {
    _conversion.library("/bin/app", "00010000 T work\n00010100 T rest\n");
    _conversion.softInterrupts("CPU0\n");
    _conversion.kernelSymbols("c0008000 T start\nc0009000 T next\n");
    std::filesystem::current_path(_conversion.path(""));
  }
  ~TerminalReports() override { std::filesystem::current_path("/"); }

  Said run(const Case& one, StandardError standardError) {
    if (!one.recording.empty()) _conversion.write("perf.data", one.recording);
    _conversion.write("perf.json", "before");
    ScopedEnvironment environment;
    if (one.kernel != nullptr) environment.set("kern_ver", one.kernel);
    if (one.wide != nullptr) environment.set("ARM64", one.wide);
    std::vector<std::string> all = {"-b", "1", "-p", "root"};
    all.insert(all.end(), one.arguments.begin(), one.arguments.end());
    return runOnTerminal(_conversion, all, standardError);
  }

  /// Checks that the text is on the terminal, that there is none without a terminal, and that everything else
  /// is equal.
  void check(const Case& one) {
    const Said told = run(one, StandardError::terminal);
    const std::string document = _conversion.read("perf.json");
    const std::string text = lasting(told.terminal);
    EXPECT_EQ(text.substr(0, text.find("terminate called")), one.expected);
    EXPECT_EQ(WIFEXITED(told.status) ? WEXITSTATUS(told.status) : 128 + WTERMSIG(told.status), one.status);

    const Said untold = run(one, StandardError::file);
    EXPECT_EQ(untold.error.substr(0, untold.error.find("terminate called")), "");
    EXPECT_EQ(untold.terminal, "");
    EXPECT_EQ(untold.output, told.output);
    EXPECT_EQ(untold.status, told.status);
    EXPECT_EQ(_conversion.read("perf.json"), document);
  }

  Conversion _conversion;
};

constexpr int kAborted = 128 + SIGABRT;

TEST_F(TerminalReports, NameFilesThatCannotBeReadOrWritten) {
  const std::string summary =
      std::string("zelconv: perf.data: 2 samples kept (50.0 % without a function name)") + kNothingLost;
  const std::string abortion = ": the run will probably abort and leave perf.json empty\n";
  std::filesystem::create_symlink("perf.data", _conversion.path("link"));
  const Case cases[] = {
      {profileOfTwo().build(), {}, summary},
      {"",
       {"more", "w\x1b[2Jords"},
       "zelconv: ignored: more w?[2Jords (-i names the recording, -o the document)\n" + summary},
      {"", {"-i", "missing"}, "zelconv: missing: No such file or directory\n", 255},
      {"", {"-i", "root"}, "zelconv: root: Is a directory\n", 255},
      {"", {"-i", "/dev/null"}, "zelconv: /dev/null: is empty\n", 255},
      {"",
       {"-o", "missing/x"},
       "zelconv: missing/x: cannot be written: No such file or directory\n" + summary},
      {"", {"-o", "/dev/full"}, "zelconv: /dev/full: cannot be written: No space left on device\n" + summary},
      {"root:x:0:0:root:/root:/bin/sh\n" + std::string(4096, 'x'),
       {},
       "zelconv: perf.data: is not a recording of perf, as it does not start with PERFILE2" + abortion,
       kAborted},
      {Bytes().append("PERFILE2").u64(16).u64(0).u64(1).text("", 64).str(),
       {},
       "zelconv: perf.data: was recorded into a pipe, and only recordings made into a file are understood" +
           abortion,
       kAborted},
      {profileOfTwo().build(),
       {"-o", "link"},
       "zelconv: perf.data: is the recording and the document too: it is emptied before it is read\n"
       "zelconv: perf.data: is empty\n",
       255},
  };
  for (const Case& one : cases) check(one);
}

TEST_F(TerminalReports, ShowHowTheRecordingIsRead) {
  const std::string none = std::string("zelconv: perf.data: 0 samples kept") + kNothingLost;
  const std::string decoded =
      "zelconv: perf.data: 0 samples kept, 1 trace-point decoded, 0 bytes lost, 0 samples lost by the "
      "kernel\n";
  const std::string wrong = "; they come out wrong or not at all\n";
  RecordingBuilder oneEvent;
  oneEvent.comm(7, 7, "app").attribute(0, 0, 0x1E7).attribute(1, 9, 0x10007);  // the second has no samples
  RecordingBuilder events;
  events.comm(7, 7, "app")
      .attribute(1, 0, 0x1A7)
      .attribute(0, 0, 0x187)
      .attribute(2, 3, 0x4C7)
      .eventNames({"a", "b\x1b]0;c", "x"});
  RecordingBuilder compressed;
  compressed.comm(7, 7, "app").feature(kCompressed, "");
  RecordingBuilder truncated;
  truncated.comm(7, 7, "app").attribute(1, 0, 0);  // and says nothing of its fields
  truncated.dataSize(truncated.data().size() + 500);
  const Case cases[] = {
      {truncated.build(), {}, "zelconv: perf.data: is truncated: 500 bytes of its data missing\n" + none},
      {oneEvent.build(),
       {},
       "zelconv: perf.data: its samples hold ip, tid, time, callchain, id, cpu, period: the id is where "
       "the core "
       "is read" +
           wrong + none},
      {events.build(),
       {},
       "zelconv: perf.data: samples of b?]0;c hold ip, tid, time, cpu, period: nothing is where the "
       "back-trace "
       "is read" +
           wrong +
           "zelconv: perf.data: has no table of event names before its data: no trace-point is decoded\n" +
           none},
      {compressed.build(),
       {},
       "zelconv: perf.data: its records are compressed, and none of those is read\n" + none},
      {traceOf("6.1.0-50-armmp", "armv7l"),
       {"-t"},
       "zelconv: perf.data: was recorded on kernel 6.1.0-50-armmp (armv7l) and is decoded as 3.4 of 32 bits: "
       "set "
       "kern_ver=6.1\n" +
           decoded},
      {traceOf("6.1.0", "aarch64"),
       {"-t"},
       "zelconv: perf.data: was recorded on kernel 6.1.0 (aarch64) and is decoded as 3.10 of 32 bits: set "
       "kern_ver=6.1 ARM64=y\n" +
           decoded,
       0,
       "3.10"},
      {traceOf("6.1.0", "armv7l"),
       {"-t"},
       "zelconv: perf.data: was recorded on kernel 6.1.0 (armv7l) and is decoded as 6.1 of 64 bits: set "
       "ARM64=\n" +
           decoded,
       0,
       "6.1",
       "y"},
      {traceOf("6.1.0", "aarch64"), {"-t"}, decoded, 0, "6.1", "y"},
      {traceOf("6.1.0", "aarch64"),
       {},
       decoded + "zelconv: perf.data: all samples are trace-points: convert it with -t\n"},
      {profileOfTwo().build(),
       {"-t"},
       none + "zelconv: perf.data: all samples are those of a profile: convert it without -t\n"},
  };
  for (const Case& one : cases) check(one);
}

TEST_F(TerminalReports, WarnAboutUnusableKernelTables) {
  const std::string summary =
      std::string("zelconv: perf.data: 2 samples kept (50.0 % without a function name)") + kNothingLost;
  utsname machine{};
  uname(&machine);
  _conversion.kernelSymbols("00000000 T start\n00000000 T next\n");
  check({profileOfTwo().build(),
         {},
         "zelconv: " + _conversion.path("kallsyms") +
             " shows no addresses to this user: functions of the kernel have no names\n" + summary});

  gMachineFiles.kernelSymbols = MachineFiles().kernelSymbols;
  const std::string own = profileOfTwo().textFeature(kOsRelease, machine.release).build();
  const std::string told = lasting(run({own, {}, ""}, StandardError::terminal).terminal);
  if (told.find("shows no addresses") != std::string::npos) GTEST_SKIP() << "no addresses of the kernel here";
  EXPECT_EQ(told, summary);
  const std::string other = profileOfTwo().textFeature(kOsRelease, "3.4.0-device").build();
  EXPECT_EQ(
      lasting(run({other, {}, ""}, StandardError::terminal).terminal),
      "zelconv: perf.data: was recorded on kernel 3.4.0-device, and functions of the kernel get the names of "
      "this machine's, " +
          std::string(machine.release) + "\n" + summary);
}

TEST_F(TerminalReports, SummariseLosses) {
  RecordingBuilder recording = profileOfTwo();
  recording.bytes(Bytes().u32(68).u16(0).u16(8).str());  // perf's mark for a finished round
  recording.record(10, std::string(64, 'm')).record(7, std::string(24, 'f')).record(10, std::string(64, 'm'));
  recording.record(2, Bytes().u64(1).u64(40).str()).record(13, Bytes().u64(3).str()).record(2, "tiny");
  recording.sample({0x10010, 7, 7, 3000, 0, std::vector<std::uint64_t>(40)}).comm(8, 8, "after");
  recording.sample({0x10010, 7, 7, 4000, 300});  // a trace-point of no known event
  const std::size_t dataSize = recording.data().size();
  recording.dataSize(dataSize).record(5, "after the data").bytes(std::string(64, 'b'));
  check({recording.build(),
         {},
         "zelconv: perf.data: 2 samples kept (50.0 % without a function name), 0 trace-points decoded, 384 "
         "bytes "
         "lost, 43 samples lost by the kernel\n"
         "zelconv: perf.data: records passed over: 2 LOST, 1 FORK, 1 SAMPLE, 2 MMAP2, 1 LOST_SAMPLES, 1 "
         "FINISHED_ROUND\n"
         "zelconv: perf.data: 1 record of more than 256 bytes lost, 1 of them SAMPLE (no back-trace of more "
         "than 25 "
         "fits)\n"});
}

TEST_F(TerminalReports, SummariseMessagesOfNm) {
  const std::string summary =
      std::string("zelconv: perf.data: 3 samples kept (100.0 % without a function name)") + kNothingLost;
  RecordingBuilder recording = profileOfTwo();
  recording.mmap(7, 7, 0x20000, 0x1000, "/lib/bare.so").sample({0x20010, 7, 7, 2500});
  _conversion.library("/lib/bare.so", "");
  _conversion.write("bin/nm", "#!/bin/sh\necho nm: $2: no symbols >&2\n");
  _conversion.write("perf.data", recording.build());
  const Said told = run({}, StandardError::terminal);
  EXPECT_EQ(told.terminal,
            summary +
                "zelconv: nm lists no symbols of 2 of 2 files, such as root/bin/app: -p names a "
                "folder with unstripped copies\n");
  // Without a terminal nm's messages are passed on.
  EXPECT_EQ(run({}, StandardError::file).error,
            "nm: root/bin/app: no symbols\nnm: root/lib/bare.so: no symbols\n");

  if (!missingProgramsShow()) GTEST_SKIP() << "the system does not tell that nm is missing";
  std::filesystem::remove(_conversion.path("bin/nm"));
  _conversion.environment().set("PATH", _conversion.path("bin"));
  EXPECT_TRUE(
      lasting(run({}, StandardError::terminal).terminal)
          .starts_with(
              "zelconv: nm: No such file or directory: functions of programs and libraries have no names\n"));
}

TEST_F(TerminalReports, ProgressAppearsInALongRunAndIsErased) {
  RecordingBuilder recording = profileOfTwo();
  recording.mmap(7, 7, 0x20000, 0x1000, "/lib/missing.so").mmap(7, 7, 0x30000, 0x1000, "/lib/slow.so");
  _conversion.library("/lib/slow.so", "");
  recording.sample({0x30010, 7, 7, 2500, 0, {0x30010, 0x30020, 0x10010}});
  for (int i = 0; i < 10000; ++i) recording.sample({0x10010, 7, 7, 3000});
  _conversion.write("bin/nm", "#!/bin/sh\ncase $2 in *slow*) sleep 1;; esac\n");
  _conversion.write("perf.data", recording.build());
  const std::string text = run({}, StandardError::terminal).terminal;
  const std::string nm = "\rzelconv: 46 % read, nm 3 of 3: root/lib/slow.so";
  const std::string reading = "\rzelconv: 93 % read";
  ASSERT_NE(text.find(nm), std::string::npos) << text;
  EXPECT_NE(text.find(reading, text.find(nm)), std::string::npos) << text;
  // The progress is erased before the summary.
  const std::size_t last = text.rfind('\r');
  EXPECT_EQ(text.substr(last, 9), "\rzelconv:");
  EXPECT_EQ(text[last - 1], ' ');
  EXPECT_EQ(run({}, StandardError::file).error, "");
}

TEST(ProgressLine, WaitsBeforeItAppears) {
  const int due = ProgressLine().due();
  EXPECT_GT(due, 0);
  EXPECT_LE(due, 500);
}

}  // namespace
