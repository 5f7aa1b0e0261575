#include "document/TimechartLoad.h"

#include <gtest/gtest.h>

#include "kit/document/Documents.h"

namespace zelkit {
namespace {

TEST(TimechartLoad, SumsCoresAndTasksAndKeepsTheLongestWaits) {
  TimechartLoad load(1);
  readText(kTimechartDocument, load);
  load.finish();
  EXPECT_NEAR(load.duration(), 0.005, 1e-9);
  ASSERT_EQ(load.cores().size(), 2U);
  EXPECT_NEAR(load.cores()[0].busy, 0.005, 1e-9);
  // It is on at its end: until the document's last point.
  EXPECT_NEAR(load.cores()[1].busy, 0.002, 1e-9);
  ASSERT_EQ(load.tasks(10).size(), 1U);
  const TimechartLoad::Task task = load.tasks(10).front();
  EXPECT_EQ(task.name, "11 - thread");
  EXPECT_NEAR(task.running, 0.002, 1e-9);
  EXPECT_NEAR(task.waitingForInput, 0.0015, 1e-9);
  EXPECT_NEAR(task.waitingForCpu, 0.0005, 1e-9);
  ASSERT_EQ(load.waits().size(), 1U);
  EXPECT_EQ(load.waits()[0].what, "Waiting for I/O");
  EXPECT_NEAR(load.waits()[0].start, 0.002, 1e-9);
}

}  // namespace
}  // namespace zelkit
