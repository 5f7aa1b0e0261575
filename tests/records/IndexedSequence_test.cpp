#include "records/IndexedSequence.h"

#include <gtest/gtest.h>

#include <random>

namespace {

TEST(IndexedSequence, EqualsAVector) {
  std::mt19937 numbers(1);
  for (const unsigned int spread : {1U, 3U, 100000U}) {  // at the front, near it, anywhere
    IndexedSequence<unsigned int> sequence;
    std::vector<unsigned int> expected;
    for (unsigned int i = 0; i < 6000; ++i) {
      const std::size_t place = numbers() % spread % (expected.size() + 1);
      sequence.insert(place, i);
      expected.insert(expected.begin() + static_cast<std::ptrdiff_t>(place), i);
    }
    ASSERT_EQ(sequence.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i)
      ASSERT_EQ(sequence[i], expected[i]) << spread << " " << i;
  }
}

}  // namespace
