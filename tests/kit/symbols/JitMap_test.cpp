#include "symbols/JitMap.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "kit/symbols/ElfWorkshop.h"

namespace zelkit {
namespace {

TEST(JitMap, KeepsTheLatestFunctionOfEachAddress) {
  std::size_t badLines = 0;
  const SymbolList list = parseJitMap(
      "7f0010 10 first\n"
      "0x7f0020 0x8 with blanks (in.js:3)\n"
      "7f0010 c second\n"
      "no number\n"
      "7f0040 0 empty\n"
      "7f0050\n"
      "ffffffffffffffff ffffffffffffffff wraps\n"
      "11111111111111111 1 too long a number\n"
      "\n"
      "7f0018 20 unfinished line",
      badLines);
  EXPECT_EQ(badLines, 5u);
  ASSERT_EQ(list.size(), 4u);
  EXPECT_EQ(list[0], (Symbol{0x7f0010, 8, "second"}));
  EXPECT_EQ(list[1], (Symbol{0x7f0018, 8, "unfinished line"}));
  EXPECT_EQ(list[2], (Symbol{0x7f0020, 8, "with blanks (in.js:3)"}));
  EXPECT_EQ(list[3], (Symbol{0x7f0028, 16, "unfinished line"}));
}

TEST(JitMap, IsSearchedForBelowTheRoot) {
  const ElfWorkshop workshop;
  workshop.write("root/tmp/perf-12.map", "10 4 made\n");
  workshop.run("ln -s /etc/passwd root/tmp/perf-13.map && mkfifo root/tmp/perf-14.map");
  const std::string root = workshop.path("root");
  std::size_t badLines = 0;
  EXPECT_EQ(readJitMap(findJitMap(root, 12), badLines)[0], (Symbol{0x10, 4, "made"}));
  if (geteuid() == 0) {
    workshop.run("cp root/tmp/perf-12.map root/tmp/perf-15.map && chown 65534 root/tmp/perf-15.map");
    EXPECT_EQ(findJitMap(root, 15), "") << "anybody may write to /tmp";
  }
  for (const unsigned pid : {1u, 13u, 14u}) EXPECT_EQ(findJitMap(root, pid), "");
}

}  // namespace
}  // namespace zelkit
