#include "timechart/ChartTable.h"

#include <gtest/gtest.h>

namespace {

TEST(ChartTable, DistinguishesNumbers) {
  ChartTable<int> table;
  int charts[4] = {};
  EXPECT_EQ(table.find(0), nullptr);
  EXPECT_EQ(table.find(300), nullptr);
  table.add(300, &charts[0]);
  EXPECT_EQ(table.find(300), &charts[0]);
  EXPECT_EQ(table.find(812), nullptr);
  table.add(812, &charts[1]);
  table.add(-1, &charts[2]);
  EXPECT_EQ(table.find(300), &charts[0]);
  EXPECT_EQ(table.find(812), &charts[1]);
  EXPECT_EQ(table.add(300, &charts[3]), &charts[3]);
  EXPECT_EQ(table.find(300), &charts[3]);
  EXPECT_EQ(table.inOrder(),
            (std::vector<ChartTable<int>::Entry>{{-1, &charts[2]}, {300, &charts[3]}, {812, &charts[1]}}));
}

}  // namespace
