#include "timechart/TimeOrder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace {

struct Sample {
  double time;
  int number;
  bool operator==(const Sample&) const = default;
};

TEST(TimeOrder, EqualsAStableSort) {
  std::mt19937 numbers(1);
  for (const unsigned int disorder : {1U, 2U, 10U, 1000U})
    for (int count = 0; count < 200; ++count) {
      std::vector<Sample> samples;
      for (int i = 0; i < count; ++i) samples.push_back({i + static_cast<double>(numbers() % disorder), i});
      std::vector<Sample> expected = samples;
      std::stable_sort(expected.begin(), expected.end(),
                       [](const Sample& a, const Sample& b) { return a.time < b.time; });
      sortByTime(samples);
      EXPECT_EQ(samples, expected) << disorder << " " << count;
    }
}

}  // namespace
