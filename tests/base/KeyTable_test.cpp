#include "base/KeyTable.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <unordered_set>

namespace {

TEST(KeyTable, AddKeepsTheFirstValueAndSetTheLast) {
  KeyTable<int> table;
  int values[3] = {};
  EXPECT_EQ(table.find(0), nullptr);
  table.add(0, &values[0]);
  table.add(0, &values[1]);
  EXPECT_EQ(table.find(0), &values[0]);
  table.set(0, &values[2]);
  EXPECT_EQ(table.find(0), &values[2]);
  EXPECT_EQ(table.find(std::uint64_t{1} << 63), nullptr);
}

TEST(KeyTable, FindsManyKeysOfAnyStep) {
  for (const std::uint64_t step : {1ULL, 16ULL, 42043ULL, 1ULL << 16, 1ULL << 20, 1ULL << 32, 1ULL << 48}) {
    KeyTable<int> table;
    std::vector<int> values(60000);
    for (std::size_t i = 0; i < values.size(); ++i) table.add(i * step, &values[i]);
    for (std::size_t i = 0; i < values.size(); ++i) ASSERT_EQ(table.find(i * step), &values[i]) << step;
    EXPECT_EQ(table.find(values.size() * step), nullptr);
    std::size_t count = 0;
    table.forEach([&](std::uint64_t key, const int* value) {
      ++count;
      ASSERT_EQ(value, &values[static_cast<std::size_t>(key / step)]);
    });
    EXPECT_EQ(count, values.size());
  }
}

TEST(KeyHash, SpreadsKeysThatCollideUnhashed) {
  // Multiples of the size that the standard library gives such a table, and keys that differ in few bits.
  for (const std::uint64_t step : {20753ULL, 20753ULL * 107897, 1ULL << 16, 1ULL << 32, 1ULL << 48}) {
    std::unordered_set<std::uint64_t, KeyHash> keys;
    for (std::uint64_t i = 0; i < 20000; ++i) keys.insert(i * step);
    std::size_t fullest = 0;
    for (std::size_t bucket = 0; bucket < keys.bucket_count(); ++bucket)
      fullest = std::max(fullest, keys.bucket_size(bucket));
    EXPECT_LT(fullest, 16U) << step;
  }
}

}  // namespace
