#include "records/AddressCache.h"

#include <gtest/gtest.h>

#include <memory>

#include "records/PerfRecordMMap.h"
#include "symbols/SymbolTableElement.h"

namespace {

constexpr CodeAddress kCode = {0x8000, 7, 8};
constexpr ResolutionBasis kBasis = {5, 6, AddressClass::mapped};

TEST(AddressCache, IsEmptyAtFirst) {
  const auto cache = std::make_unique<AddressCache>();
  EXPECT_EQ(cache->find({}, {}), nullptr);
  EXPECT_EQ(cache->find(kCode, kBasis), nullptr);
}

TEST(AddressCache, FindsOnlyTheStoredKey) {
  const auto cache = std::make_unique<AddressCache>();
  PerfRecordMMap map;
  const Resolution& stored = cache->store(kCode, kBasis, {.map = &map, .unmapped = true});
  EXPECT_EQ(stored.map, &map);
  ASSERT_NE(cache->find(kCode, kBasis), nullptr);
  EXPECT_EQ(cache->find(kCode, kBasis)->map, &map);
  EXPECT_TRUE(cache->find(kCode, kBasis)->unmapped);
  // The first three use the same slot, as the bits of address, pid and tid overlap there.
  const CodeAddress others[] = {{0x8000, 7 ^ (8U << 8), 0},
                                {0x8000, 7 ^ (9U << 8), 1},
                                {0x100008000, 6, 8},
                                {0x8004, 7, 8},
                                {0x8000, 9, 8},
                                {0x8000, 7, 9}};
  for (const CodeAddress& other : others) EXPECT_EQ(cache->find(other, kBasis), nullptr) << &other - others;

  PerfRecordMMap second;
  cache->store(others[0], kBasis, {.map = &second});
  EXPECT_EQ(cache->find(kCode, kBasis), nullptr);
  EXPECT_EQ(cache->find(others[0], kBasis)->map, &second);
}

TEST(AddressCache, ANewMapOrProcessMakesEntriesStale) {
  const auto cache = std::make_unique<AddressCache>();
  PerfRecordMMap map;
  SymbolTableElement page;
  constexpr ResolutionBasis kFurtherMap = {6, 6, AddressClass::mapped};
  constexpr ResolutionBasis kFurtherProcess = {5, 7, AddressClass::mapped};
  constexpr ResolutionBasis kOtherClass = {5, 6, AddressClass::stack};

  cache->store(kCode, kBasis, {.map = &map});
  EXPECT_EQ(cache->find(kCode, kFurtherMap), nullptr);
  EXPECT_NE(cache->find(kCode, kFurtherProcess), nullptr);
  EXPECT_NE(cache->find(kCode, kOtherClass), nullptr);

  cache->store(kCode, kBasis, {.map = &map, .page = &page, .unmapped = true});
  EXPECT_NE(cache->find(kCode, kBasis), nullptr);
  for (const ResolutionBasis& now : {kFurtherMap, kFurtherProcess, kOtherClass})
    EXPECT_EQ(cache->find(kCode, now), nullptr);
}

}  // namespace
