#include "symbols/SymbolListBuilder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <random>
#include <stdexcept>

namespace zelkit {
namespace {

struct Added {
  Symbol symbol;
  std::uint64_t limit = SymbolListBuilder::kNoLimit;
  std::uint64_t rank = 0;
};

SymbolList listOf(const std::vector<Added>& symbols) {
  SymbolListBuilder builder;
  for (const Added& added : symbols) builder.add(added.symbol, added.limit, added.rank);
  return builder.build();
}

/// "ADDRESS+SIZE NAME" of each symbol, in hexadecimal.
std::string textOf(const SymbolList& list) {
  std::string text;
  char line[256];
  for (std::size_t i = 0; i < list.size(); ++i) {
    const Symbol symbol = list[i];
    std::snprintf(line, sizeof line, "%s%llx+%llx %s", i > 0 ? ", " : "",
                  static_cast<unsigned long long>(symbol.address),
                  static_cast<unsigned long long>(symbol.size), symbol.name.data());
    text += line;
  }
  return text;
}

TEST(SymbolListBuilder, MakesRangesDisjoint) {
  const struct {
    const char* what;
    std::vector<Added> symbols;
    const char* expected;
  } cases[] = {
      {"nothing", {}, ""},
      {"out of order, a gap", {{{0x200, 8, "b"}}, {{0x100, 16, "a"}}}, "100+10 a, 200+8 b"},
      {"one inside another",
       {{{0, 0x100, "outer"}}, {{0x40, 0x20, "inner"}}},
       "0+40 outer, 40+20 inner, 60+a0 outer"},
      {"three deep, one end", {{{0, 9, "a"}}, {{2, 7, "b"}}, {{4, 2, "c"}}}, "0+2 a, 2+2 b, 4+2 c, 6+3 b"},
      {"later one reaches further", {{{0, 6, "a"}}, {{4, 6, "b"}}}, "0+4 a, 4+6 b"},
      {"unknown size, to the next", {{{0, 0, "a"}, 99}, {{16, 4, "b"}}}, "0+10 a, 10+4 b"},
      {"unknown size, to the section's end", {{{0, 0, "a"}, 12}, {{16, 4, "b"}}}, "0+c a, 10+4 b"},
      {"unknown size inside another", {{{0, 8, "a"}}, {{4, 0, "label"}, 99}}, "0+8 a"},
      {"size beyond the section", {{{0, 80, "a"}, 16}}, "0+10 a"},
      {"start beyond the section", {{{16, 1, "a"}, 16}}, ""},
      {"no name", {{{0, 4, ""}}}, ""},
      {"aliases by rank",
       {{{0, 4, "low"}, 9, 1}, {{0, 8, "high"}, 9, 3}, {{0, 2, "middle"}, 9, 2}},
       "0+8 high"},
      {"equal ranks", {{{0, 4, "first"}}, {{0, 2, "last"}}}, "0+2 last"},
      {"longer than a table's symbol", {{{0, 0x200001, "a"}}}, "0+100000 a, 100000+100000 a, 200000+1 a"},
      {"end of the address space", {{{~0ull - 2, 99, "a"}}}, "fffffffffffffffd+2 a"},
  };
  for (const auto& oneCase : cases)
    EXPECT_EQ(textOf(listOf(oneCase.symbols)), oneCase.expected) << oneCase.what;
}

TEST(SymbolListBuilder, AssignsAddressesToTheFunctionThatStartsLast) {
  std::mt19937 random(1);
  for (int round = 0; round < 300; ++round) {
    std::map<std::uint64_t, std::uint64_t> sizes;  // 0: unknown
    while (sizes.size() < 12) sizes[random() % 100] = random() % 4 == 0 ? 0 : random() % 40;
    SymbolListBuilder builder;
    for (const auto& [start, size] : sizes) builder.add({start, size, std::to_string(start)}, 120);
    const SymbolList list = builder.build();
    std::map<std::uint64_t, std::string> owners;
    for (auto next = sizes.begin(); next != sizes.end();) {
      auto [start, size] = *next++;
      if (size == 0 && owners.contains(start)) continue;
      if (size == 0) size = (next != sizes.end() ? next->first : 120) - start;
      for (std::uint64_t address = start; address < std::min<std::uint64_t>(start + size, 120); ++address)
        owners[address] = std::to_string(start);
    }
    for (std::uint64_t address = 0; address < 150; ++address) {
      const std::size_t found = list.find(address);
      ASSERT_EQ(found < list.size() ? list[found].name : "", owners[address]) << round << ": " << address;
    }
  }
}

TEST(SymbolListBuilder, ListsUnnamedCodeAndCutsItAtStartsOfFunctions) {
  SymbolListBuilder builder;
  builder.addCode(0x2000, 0x3000);
  builder.addCode(0x1000, 0x1800);
  for (const std::uint64_t start : {0x1010u, 0x1104u, 0x1104u, 0x1700u, 0x1900u, 0x2000u, 0x2f10u, 0x2f80u})
    builder.addStart(start);
  builder.add({0x1000, 0x100, "named"});   // covers a start
  builder.add({0x1140, 0x5c0, "second"});  // begins within unnamed code, ends where some begins
  builder.add({0x2f00, 0x80, "last"});
  builder.add({0x2fb0, 0x20, "padded"});
  EXPECT_EQ(textOf(builder.build()),
            "1000+100 named, 1104+3c , 1140+5c0 second, 1700+100 , 2000+f00 , 2f00+80 last, 2f80+30 , "
            "2fb0+20 padded");
}

TEST(SymbolListBuilder, ListsCodeUpToTheLastAddress) {
  SymbolListBuilder builder;
  builder.addCode(SymbolListBuilder::kNoLimit - 0x100080, SymbolListBuilder::kNoLimit);
  EXPECT_EQ(textOf(builder.build()), "ffffffffffefff7f+100000 , ffffffffffffff7f+80 ");
}

TEST(SymbolListBuilder, PreparesForNoMoreTextThanFilesHold) {
  SymbolListBuilder builder;
  builder.reserve(1, std::size_t{1} << (8 * sizeof(std::size_t) - 4));
  builder.add({0, 4, "a"});
  EXPECT_EQ(textOf(builder.build()), "0+4 a");
}

TEST(SymbolListBuilder, KeepsSourcesAndStoresEachFileOnce) {
  SymbolListBuilder builder;
  for (std::uint64_t i = 0; i < 100; ++i) builder.add({i, 1, "f", "a/rather/long/name/of/a/file.cpp", 7});
  const SymbolList list = builder.build();
  EXPECT_EQ(list[99], (Symbol{99, 1, "f", "a/rather/long/name/of/a/file.cpp", 7}));
  EXPECT_LT(list.bytes().size(), 100 * 30u);
}

TEST(SymbolList, RefusesDamagedBlocksAndNeverReadsOutside) {
  const std::string whole(listOf({{{0x100, 16, "first", "file.c", 3}}, {{0x200, 8, "second"}}}).bytes());
  const auto readAll = [](const std::string& bytes) {
    const SymbolList list = SymbolList::fromBytes(bytes);
    std::size_t letters = 0;
    for (std::size_t i = 0; i < list.size(); ++i) letters += list[i].name.size() + list[i].file.size();
    return letters;
  };
  EXPECT_EQ(readAll(whole), 17u);
  for (std::size_t size = 0; size < whole.size(); ++size) {
    const std::string cut = whole.substr(0, size);
    // A cut right after a NUL may leave a block that is only shorter.
    if (size < 16 + 2 * 24 || cut.back() != '\0') {
      EXPECT_THROW(readAll(cut), std::runtime_error) << size;
    }
  }
  int refused = 0;
  for (std::size_t at = 0; at < whole.size(); ++at) {
    std::string flipped = whole;
    flipped[at] = static_cast<char>(flipped[at] ^ 0x80);
    try {
      EXPECT_LE(readAll(flipped), whole.size() * 2);
    } catch (const std::runtime_error&) {
      ++refused;
    }
  }
  EXPECT_GT(refused, 24);
}

}  // namespace
}  // namespace zelkit
