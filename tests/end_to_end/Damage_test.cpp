#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>

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

/// The wait status of a conversion in a process of its own, which speaks to nobody and is ended after 20
/// seconds.
int convert(const Conversion& folder, const std::string& bytes, const char* mode) {
  folder.write("perf.data", bytes);
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    alarm(20);
    if (std::freopen("/dev/null", "w", stdout) == nullptr) _exit(99);
    // An exception must end this process, as it ends the program, and not reach the test's own handler.
    [&]() noexcept {
      _exit(folder.runProgram({"-b", "1", mode, "-v", "1", "-i", folder.path("perf.data"), "-o",
                               folder.path("out"), "-p", folder.path("root")}));
    }();
  }
  int status = 0;
  waitpid(child, &status, 0);
  return status;
}

/// Whether a run ended well, or with the message for an unusable file.
bool endsWell(int status) {
  return WIFEXITED(status) && (WEXITSTATUS(status) == 0 || WEXITSTATUS(status) == 255);
}

/// Whether a run was ended by an exception that nobody caught.
bool aborts(int status) {
  return WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT;
}

/// The conversions to try: all of them, or every few, where a run is slow.
constexpr std::size_t kStride = ZELCONV_DAMAGE_STRIDE;

TEST(Damage, TruncationAnywhereEndsByTheRules) {
  const Conversion folder;
  folder.library("/app/tool", "10000 T main\n10100 T work\n10300 T stop\n");
  const std::string whole = recording();
  ASSERT_EQ(convert(folder, whole, "-t"), 0);
  for (std::size_t size = 0; size < whole.size(); size += kStride)
    for (const char* mode : {"-t", "-w"}) {
      const int status = convert(folder, whole.substr(0, size), mode);
      EXPECT_TRUE(WIFEXITED(status) && (WEXITSTATUS(status) == 0 || size == 0)) << size;
    }
}

TEST(Damage, AnyByteTurnedOverEndsByTheRules) {
  const Conversion folder;
  folder.library("/app/tool", "10000 T main\n10100 T work\n10300 T stop\n");
  const std::string whole = recording();
  const auto dataStart = static_cast<std::size_t>(RawRecord{0, whole.substr(0, 56)}.u64(40));
  for (std::size_t place = 0; place < whole.size(); place += kStride) {
    std::string damaged = whole;
    damaged[place] = static_cast<char>(~damaged[place]);
    const int status = convert(folder, damaged, place % 2 == 0 ? "-t" : "-w");
    // Only damage ahead of the records can give an event a number that no table takes.
    EXPECT_TRUE(endsWell(status) || (place < dataStart && aborts(status))) << place;
  }
}

}  // namespace
