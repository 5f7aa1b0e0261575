#include "document/SampleRanking.h"

#include <gtest/gtest.h>

#include <sstream>

#include "kit/document/Documents.h"

namespace zelkit {
namespace {

/// Returns the groups as "NAME[@LIBRARY] SELF TOTAL[ <CALLER COUNT]; ...".
std::string ranked(SampleRanking::By by, bool withCallers = false, std::size_t most = 10) {
  SampleRanking ranking(by, withCallers);
  readText(kProfileDocument, ranking);
  std::ostringstream text;
  for (const SampleRanking::Group& group : ranking.groups(most)) {
    text << group.name << (group.library.empty() ? "" : "@" + group.library) << ' ' << group.self << ' '
         << group.total;
    for (const auto& [caller, count] : group.callers) text << " <" << caller << ' ' << count;
    text << "; ";
  }
  return text.str();
}

TEST(SampleRanking, CountsOwnSamplesAndThoseOfCallees) {
  using By = SampleRanking::By;
  EXPECT_EQ(ranked(By::kFunction),
            "work@/app/tool 2 3; main@/app/tool 1 4; copy@/lib/libx.so 1 2; [in /lib/libx.so] 1 1; "
            "schedule@kernel 1 1; ");
  EXPECT_EQ(ranked(By::kLibrary), "/app/tool 3 4; /lib/libx.so 2 3; kernel 1 1; ");
  EXPECT_EQ(ranked(By::kFile), "[no file] 4 6; work.cpp 2 3; ");
  EXPECT_EQ(ranked(By::kProcess), "tool 7 5 5; other 9 1 1; ");
  EXPECT_EQ(ranked(By::kThread), "tool 7 3 3; worker 8 2 2; other 9 1 1; ");
  EXPECT_EQ(ranked(By::kCore), "core 0 3 3; core 1 3 3; ");
}

TEST(SampleRanking, CountsCallersOncePerSampleAndLimitsTheRows) {
  EXPECT_EQ(ranked(SampleRanking::By::kFunction, true, 3),
            "work@/app/tool 2 3 <main 3 <work 1; main@/app/tool 1 4; copy@/lib/libx.so 1 2 <work 1; ");
}

}  // namespace
}  // namespace zelkit
