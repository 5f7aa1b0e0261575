// Tests with recordings of real machines, which are not part of the project.

#include <gtest/gtest.h>

#include <filesystem>

#include "kit/support/ProfileFigures.h"
#include "kit/support/TestFolder.h"
#include "kit/support/Zelkit.h"

namespace {

const std::string kFolder = ZELCONV_RECORDINGS;

bool missing(const std::string& file) {
  return !std::filesystem::exists(kFolder + "/" + file);
}

#define SKIP_WITHOUT(file) \
  if (missing(file)) GTEST_SKIP() << kFolder << "/" << (file) << " is not there"

/// A folder with the files of the ARM guest's kernel.
void gatherMachine(const TestFolder& folder) {
  std::filesystem::copy(kFolder + "/arm32/kallsyms", folder.path("kallsyms"));
  std::filesystem::copy(kFolder + "/arm32/softirqs", folder.path("softirqs"));
}

TEST(RealRecordings, OfAnArmGuestAreNearlyAllNamed) {
  SKIP_WITHOUT("arm32/modern/cpu-clock-g.data");
  const TestFolder folder;
  gatherMachine(folder);
  const std::string arm = kFolder + "/arm32/";
  const ProgramRun run =
      runZelkit("convert " + arm + "modern/cpu-clock-g.data -o " + folder.path("x.json") + " --machine " +
                folder.path("") + " --symbols " + arm + "rootfs --symbols " + arm + "rootfs-libs --symbols " +
                arm + "rootfs-libs/lib");
  ASSERT_EQ(run.status, 0) << run.said;
  const ProfileFigures figures(folder.path("x.json"));
  EXPECT_EQ(figures.damage, "");
  EXPECT_EQ(figures.samples, 1263U);
  // The system calls of the C library are in a function without a name in its stripped file.
  EXPECT_LE(figures.unnamed, 104U);
  EXPECT_NE(
      run.said.find("85 samples in functions that the stripped /lib/arm-linux-gnueabihf/libc.so.6 does not"),
      std::string::npos);
  EXPECT_NE(run.said.find("DIR/.build-id/23/afff97f2f88057df89abc0852df440e8d6f325.debug"),
            std::string::npos);
  EXPECT_EQ(figures.byFunction.at("busy_leaf_add"), 150U);
  EXPECT_EQ(figures.byFunction.at("read_zero"), 98U);
  EXPECT_EQ(figures.deepest, 15U);
  EXPECT_NEAR(figures.firstTime, 4.043178, 0.000002);
}

TEST(RealRecordings, FromFilesPipesAndCompressedAreEqual) {
  SKIP_WITHOUT("arm32/modern/tracepoints.data");
  const TestFolder folder;
  gatherMachine(folder);
  const std::pair<const char*, const char*> cases[] = {
      {"tracepoints", "2751 of 2751"}, {"compressed", "1261 of 1261"}, {"pipe", "993 of 993"}};
  for (const auto& [name, samples] : cases) {
    const std::string input = kFolder + "/arm32/modern/" + name + ".data";
    const ProgramRun run =
        runZelkit("convert " + input + " -o " + folder.path("t.json") + " --machine " + folder.path(""));
    ASSERT_EQ(run.status, 0) << run.said;
    EXPECT_NE(run.said.find(samples), std::string::npos) << run.said;
    // The engine makes the same document of the rewritten file.
    ASSERT_EQ(runZelkit("import " + input + " -o " + folder.path("old.data")).status, 0);
    const ProgramRun engine =
        runCommand("kern_ver=3.10 " ZELCONV_FOR_MACHINE " " + folder.path("") + " -t -b 0.001 -i " +
                   folder.path("old.data") + " -o " + folder.path("old.json"));
    ASSERT_EQ(engine.status, 0) << engine.said;
    EXPECT_EQ(folder.read("t.json"), folder.read("old.json"));
    EXPECT_GT(folder.read("t.json").size(), 30000U);
  }
}

TEST(RealRecordings, OfAndroidContainTheirSymbols) {
  const struct {
    const char* file;
    std::size_t samples;
    const char* function;
    std::size_t hits;
  } cases[] = {
      {"generated_by_linux_perf", 156, "", 156},
      {"perf_with_symbols", 935, "main", 572},
      {"perf_with_jit_symbol", 151, "com.android.simpleperf.debuggable.MainActivity$1.run", 128},
      {"perf_with_trace_offcpu", 2270, "RunFunction()", 2124},
      {"perf_display_bitmaps", 525, "MterpInvokeVirtual", 10},
      {"perf_with_two_event_types", 8, "", 8},
      {"perf_with_tracepoint_event", 14, "filemap_fault", 2},
      {"perf_g_fp", 10, "", 10},
  };
  SKIP_WITHOUT("android");
  const TestFolder folder;
  for (const auto& expected : cases) {
    const ProgramRun run = runZelkit("convert " + kFolder + "/android/" + expected.file +
                                     ".data --mode profile -o " + folder.path("a.json"));
    ASSERT_EQ(run.status, 0) << run.said;
    const ProfileFigures figures(folder.path("a.json"));
    EXPECT_EQ(figures.samples, expected.samples) << expected.file;
    EXPECT_EQ(figures.byFunction.at(expected.function), expected.hits) << expected.file;
  }
}

}  // namespace
