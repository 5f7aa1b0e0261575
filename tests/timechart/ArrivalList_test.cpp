#include "timechart/ArrivalList.h"

#include <gtest/gtest.h>

namespace {

TEST(ArrivalList, KeepsAllElementsInOrder) {
  std::vector<ArrivalList<double>> lists(3);  // which share their memory
  std::vector<double> expected;
  for (int i = 0; i < 20000; ++i) {
    expected.push_back(i);
    for (ArrivalList<double>& list : lists) {
      ASSERT_EQ(list.empty(), i == 0);
      list.add(i);
      ASSERT_EQ(list.last(), i);
      ASSERT_TRUE(i % 777 != 0 || list.all() == expected) << i;
    }
  }
}

}  // namespace
