#include "base/KeyHash.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <unordered_set>

namespace {

TEST(KeyHash, SpreadsKeysThatCollideByThemselves) {
  // Table sizes that the standard library uses, and keys that differ in a few bits only.
  for (const std::uint64_t step :
       {42043ULL, 85229ULL, 107897ULL * 42043, 1ULL << 32, 1ULL << 48, 1ULL << 16}) {
    std::unordered_set<std::uint64_t, KeyHash> keys;
    for (std::uint64_t i = 0; i < 20000; ++i) keys.insert(i * step);
    std::size_t fullest = 0;
    for (std::size_t bucket = 0; bucket < keys.bucket_count(); ++bucket)
      fullest = std::max(fullest, keys.bucket_size(bucket));
    EXPECT_LT(fullest, 16U) << step;
  }
}

}  // namespace
