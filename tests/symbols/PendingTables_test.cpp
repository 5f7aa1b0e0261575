#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <random>
#include <set>
#include <sstream>

#include "base/MachineFiles.h"
#include "support/Conversion.h"

namespace {

constexpr unsigned int kMaps = 300;

/// Random numbers for values that a test does not depend on.
class Dice {
 public:
  explicit Dice(unsigned int seed) : _engine(seed) {}
  unsigned int below(unsigned int limit) { return static_cast<unsigned int>(_engine() % limit); }

 private:
  std::mt19937 _engine;
};

/// An nm that takes as long, lists as much and fails as often as the file itself says, and notes each call.
void installNm(const Conversion& folder) {
  folder.write("bin/nm", "#!/bin/sh\necho \"$2\" >>\"" + folder.path("calls") + "\"\n. \"$2\"\n");
}

std::string libraryText(Dice& dice, unsigned int number) {
  std::ostringstream text;
  if (dice.below(3) == 0) text << "sleep 0.0" << dice.below(4) << '\n';
  if (dice.below(4) == 0) return text.str() + "echo nothing in $2 >&2; exit 1\n";
  const unsigned int symbols = dice.below(4);
  for (unsigned int i = 0; i < symbols; ++i) {
    text << "printf '" << std::hex << 0x100 * i << " T lib" << std::dec << number << "_" << i;
    // A source file, whose key shows the order in which lists are read.
    if (dice.below(2) == 0) text << "\\tsource" << dice.below(40) << ".c:" << i + 1;
    text << "\\n'\n";
  }
  return text.str();
}

/// Libraries in two folders of the search path, some with the base names of others.
std::vector<std::string> makeLibraries(const Conversion& folder, Dice& dice) {
  std::vector<std::string> names;
  for (unsigned int i = 0; i < 120; ++i) {
    const std::string directory = "/d" + std::to_string(dice.below(3));
    const std::string name = directory + "/lib" + std::to_string(dice.below(60)) + ".so";
    names.push_back(name);
    if (dice.below(8) == 0) continue;  // nowhere
    if (dice.below(2) == 0) folder.write("root" + name, libraryText(dice, i));
    if (dice.below(2) == 0) folder.write("more" + name, libraryText(dice, i));
    // A name under which another file is found when the search continues.
    if (dice.below(3) == 0) names.push_back(folder.path("more" + name));
  }
  return names;
}

void addSample(RecordingBuilder& recording, Dice& dice, unsigned int maps) {
  const std::uint64_t address = 0x40000000 + 0x10000 * dice.below(maps) + 0x100 * dice.below(5);
  recording.sample({address, 7, 7, 1, 0, {address, address + 0x10000, address}});
}

/// Samples come after all maps, as in a recording of the whole system, or between them, and not for all.
RecordingBuilder recordingOf(const std::vector<std::string>& names, Dice& dice, bool mapsFirst) {
  RecordingBuilder recording;
  recording.comm(7, 7, "app");
  for (unsigned int i = 0; i < kMaps; ++i) {
    const std::string& name = names[dice.below(static_cast<unsigned int>(names.size()))];
    recording.mmap(7, 7, 0x40000000 + std::uint64_t{0x10000} * i, 0x1000, name);
    if (!mapsFirst && dice.below(2) == 0) addSample(recording, dice, i + 1);
  }
  if (mapsFirst)
    for (unsigned int i = 0; i < 2 * kMaps; ++i) addSample(recording, dice, kMaps);
  return recording;
}

TEST(PendingTables, MakeTheSameDocumentAsSequentialLoading) {
  for (unsigned int seed = 1; seed <= 4; ++seed) {
    const Conversion folder;
    installNm(folder);
    Dice dice(seed);
    const std::vector<std::string> names = makeLibraries(folder, dice);
    const std::string recording = recordingOf(names, dice, seed % 2 == 0).build();
    const std::vector<std::string> arguments = {"-b", "5", "-p", folder.path("more")};

    ASSERT_TRUE(folder.runApart(recording, arguments).endedWell);
    const std::string sideBySide = folder.read("out");
    std::istringstream calls(folder.read("calls"));
    std::set<std::string> files;
    for (std::string file; std::getline(calls, file);)
      EXPECT_TRUE(files.insert(file).second) << "twice: " << file;
    EXPECT_GT(files.size(), 20U);

    // Markers show the order, so with them nothing is loaded in advance.
    std::vector<std::string> inTurn = arguments;
    inTurn.emplace_back("-m");
    ASSERT_TRUE(
        folder.runApart(recording, inTurn, [&] { gMachineFiles.kernelLog = folder.path("log"); }).endedWell);
    EXPECT_EQ(sideBySide, folder.read("out")) << "seed " << seed;
    EXPECT_NE(sideBySide.find("source"), std::string::npos);
  }
}

/// Polls the condition for up to ten seconds.
bool comesTrue(const std::function<bool()>& condition) {
  for (int tries = 0; tries < 1000; ++tries) {
    if (condition()) return true;
    usleep(10000);
  }
  return false;
}

TEST(PendingTables, DoNotWaitForWhatNmLeavesRunning) {
  const Conversion folder;
  folder.write("bin/nm", "#!/bin/sh\nsleep 30 &\necho $! >>\"" + folder.path("left") +
                             "\"\necho 00000000 T first\necho 00000100 T second\necho 00000200 T third\n");
  RecordingBuilder recording;
  for (unsigned int i = 0; i < 5; ++i) {
    const std::string name = "/lib/lib" + std::to_string(i) + ".so";
    folder.write("root" + name, "");
    recording.mmap(7, 7, 0x40000000 + i * 0x10000, 0x1000, name).sample({0x40000104 + i * 0x10000, 7, 7, 1});
  }
  const auto start = std::chrono::steady_clock::now();
  EXPECT_TRUE(folder.runApart(recording.build(), {"-b", "5"}).endedWell);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(15));
  EXPECT_NE(folder.read("out").find("\"second\""), std::string::npos);
  std::istringstream left(folder.read("left"));
  int count = 0;
  for (pid_t process = 0; left >> process; ++count) kill(process, SIGKILL);
  EXPECT_EQ(count, 5);
}

TEST(PendingTables, LeaveNoProcessOfAnInterruptedRun) {
  const Conversion folder;
  folder.write("bin/nm", "#!/bin/sh\necho $$ >>\"" + folder.path("calls") + "\"\nexec sleep 100\n");
  folder.write("root/lib/libx.so", "");
  RecordingBuilder recording;
  recording.comm(7, 7, "app").mmap(7, 7, 0x40000000, 0x1000, "/lib/libx.so").sample({0x40000000, 7, 7, 1});
  folder.write("perf.data", recording.build());
  const pid_t run = fork();
  if (run == 0)
    _exit(folder.runProgram(
        {"-i", folder.path("perf.data"), "-o", folder.path("out"), "-p", folder.path("root")}));
  pid_t nm = 0;
  EXPECT_TRUE(comesTrue([&] { return (std::istringstream(folder.read("calls")) >> nm) && nm > 0; }));
  kill(run, SIGKILL);
  waitpid(run, nullptr, 0);
  EXPECT_TRUE(comesTrue([&] { return kill(nm, 0) != 0; }));
}

}  // namespace
