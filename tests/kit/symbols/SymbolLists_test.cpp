#include "symbols/SymbolLists.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>

#include "kit/symbols/ElfWorkshop.h"
#include "symbols/SymbolListBuilder.h"

namespace zelkit {
namespace {

namespace fs = std::filesystem;

FoundFile fixture() {
  return {.path = ZELKIT_FIXTURE, .elf = ElfFile::read(ZELKIT_FIXTURE), .debugPath = "", .refusal = ""};
}

std::size_t filesIn(const fs::path& folder) {
  return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

SymbolList listOfSize(std::size_t size) {
  SymbolListBuilder builder;
  builder.add({1, 1, std::string(size, 'n')});
  return builder.build();
}

TEST(SymbolLists, AreMadeOnceAndCachedBetweenRuns) {
  const ElfWorkshop workshop;
  const std::string cache = workshop.path("deep/in/cache");
  std::string first;
  for (const std::size_t run : {0U, 1U}) {
    SymbolLists lists(cache);
    const auto list = lists.listOf(fixture());
    EXPECT_EQ(lists.listOf(fixture()), list) << "read once a run";
    EXPECT_EQ(lists.cached(), run);
    EXPECT_EQ(lists.made(), 1 - run);
    if (run == 0) first = list->bytes();
    EXPECT_EQ(list->bytes(), first);
  }
  EXPECT_EQ(fs::status(cache).permissions(), fs::perms::owner_all);
  // A damaged list is made again.
  const fs::path kept = fs::directory_iterator(cache)->path();
  fs::resize_file(kept, fs::file_size(kept) / 2);
  SymbolLists lists(cache);
  EXPECT_EQ(lists.listOf(fixture())->bytes(), first);
  EXPECT_EQ(lists.made(), 1u);
}

TEST(SymbolLists, DistinguishCopiesOfABuild) {
  const ElfWorkshop workshop;
  workshop.run(
      "strip -o stripped $FIXTURE && objcopy --remove-section .note.gnu.build-id $FIXTURE anonymous && "
      "cp anonymous other");
  const std::string cache = workshop.path("cache");
  const auto sizeOf = [&](const std::string& path, const std::string& debugPath) {
    SymbolLists lists(cache);
    return lists.listOf({.path = path, .elf = ElfFile::read(path), .debugPath = debugPath, .refusal = ""})
        ->size();
  };
  const std::size_t whole = sizeOf(ZELKIT_FIXTURE, "");
  EXPECT_LT(sizeOf(workshop.path("stripped"), ""), whole);
  EXPECT_EQ(sizeOf(workshop.path("stripped"), ZELKIT_FIXTURE), whole);
  EXPECT_EQ(sizeOf(workshop.path("anonymous"), ""), whole);
  EXPECT_EQ(sizeOf(workshop.path("other"), ""), whole);
  EXPECT_EQ(filesIn(cache), 5u);
}

TEST(SymbolLists, ReadAgainWhatMayHaveChangedSince) {
  const ElfWorkshop workshop;
  const auto now = fs::file_time_type::clock::now();
  std::string content = "first";
  const auto nameSince = [&](fs::file_time_type time) {
    SymbolLists lists(workshop.path("cache"));
    const auto list = lists.listSince("kernel", time, [&] {
      SymbolListBuilder builder;
      builder.add({1, 1, content});
      return builder.build();
    });
    return std::string((*list)[0].name);
  };
  EXPECT_EQ(nameSince(now), "first");
  content = "second";
  EXPECT_EQ(nameSince(now - std::chrono::hours(1)), "first");
  EXPECT_EQ(nameSince(now + std::chrono::hours(1)), "second");
  EXPECT_EQ(nameSince(now - std::chrono::hours(1)), "second");
}

TEST(SymbolLists, RecogniseTheSameText) {
  const ElfWorkshop workshop;
  const auto make = [](std::string_view text) {
    SymbolListBuilder builder;
    builder.add({1, 1, text});
    return builder.build();
  };
  for (const char* text : {"one", "two", "one"}) {
    SymbolLists lists(workshop.path("cache"));
    EXPECT_EQ((*lists.listOfText(text, make))[0].name, text);
  }
  EXPECT_EQ(filesIn(workshop.path("cache")), 2u);
}

TEST(SymbolLists, WorkWithoutACacheThatCannotBeWritten) {
  const ElfWorkshop workshop;
  workshop.write("file", "");
  for (const std::string& folder : {workshop.folder() + "/file/cache", workshop.folder() + "/file"}) {
    SymbolLists lists(folder);
    EXPECT_FALSE(lists.listOf(fixture())->empty());
    EXPECT_EQ(lists.notKept(), 1u);
  }
  // A limit of file sizes stops a write halfway, as a full disk does.
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit limit{};
  getrlimit(RLIMIT_FSIZE, &limit);
  limit.rlim_cur = 100;
  setrlimit(RLIMIT_FSIZE, &limit);
  SymbolLists lists(workshop.path("cache"));
  EXPECT_FALSE(lists.listOf(fixture())->empty());
  EXPECT_EQ(lists.notKept(), 1u);
  EXPECT_EQ(filesIn(workshop.path("cache")), 0u);
}

TEST(ListCache, RemovesTheLeastRecentlyUsedLists) {
  const ElfWorkshop workshop;
  const ListCache cache(workshop.path("cache"), 2500);
  for (const char* name : {"a", "b", "c"}) ASSERT_TRUE(cache.store(name, listOfSize(1000)));
  const auto age = [&](const std::string& name, int hours) {
    fs::last_write_time(workshop.path("cache/" + name),
                        fs::file_time_type::clock::now() - std::chrono::hours(hours));
  };
  workshop.write("cache/broken.unfinished", "x");
  workshop.write("cache/young.unfinished", "x");
  age("a.symbols", 30);
  age("b.symbols", 20);
  age("c.symbols", 10);
  age("broken.unfinished", 2);
  EXPECT_TRUE(cache.load("a").has_value());  // now used last
  cache.trim();
  EXPECT_TRUE(cache.load("a").has_value());
  EXPECT_FALSE(cache.load("b").has_value());
  EXPECT_TRUE(cache.load("c").has_value());
  EXPECT_TRUE(fs::exists(workshop.path("cache/young.unfinished")));
  EXPECT_FALSE(fs::exists(workshop.path("cache/broken.unfinished")));
}

TEST(ListCache, SupportsParallelRuns) {
  const ElfWorkshop workshop;
  const std::string folder = workshop.path("cache");
  constexpr int kRuns = 6;
  for (int run = 0; run < kRuns; ++run) {
    if (fork() != 0) continue;
    // Each run keeps its own list under the same name and never sees a mixture or a part of one.
    const ListCache cache(folder, 100000);
    bool good = true;
    for (int round = 0; round < 200; ++round) {
      good = cache.store("shared", listOfSize(100u + static_cast<unsigned>(run))) && good;
      const std::optional<SymbolList> list = cache.load("shared");
      good = list.has_value() && list->size() == 1 && good;
      cache.trim();
    }
    _exit(good ? 0 : 1);
  }
  for (int run = 0; run < kRuns; ++run) {
    int status = 1;
    wait(&status);
    EXPECT_EQ(status, 0);
  }
  EXPECT_EQ(filesIn(folder), 1u);
}

}  // namespace
}  // namespace zelkit
