// Compares perf's reports on recordings with the documents made of them; perf is the reference.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <sstream>

#include "kit/support/ProfileFigures.h"
#include "kit/support/TestFolder.h"
#include "kit/support/Zelkit.h"

namespace {

using Counts = std::map<std::string, double>;

const std::string kJob = RECORDED_JOB;

struct Case {
  const char* name;
  std::string options;
  std::string command;
  std::string event = "";  ///< one of several
};

std::ostream& operator<<(std::ostream& stream, const Case& shown) {
  return stream << shown.name;
}

/// The name without arguments, return type and marks of clones and versions: perf shows none of them.
std::string bareName(std::string name) {
  name = name.substr(0, name.find(" [clone"));
  name = name.substr(0, name.find('@'));
  int depth = 0;
  std::size_t end = name.size();
  if (name.ends_with(" const")) end -= std::strlen(" const");
  if (end > 0 && name[end - 1] == ')') {
    std::size_t i = end;
    do {
      --i;
      depth += name[i] == ')' ? 1 : name[i] == '(' ? -1 : 0;
    } while (i > 0 && depth > 0);
    if (i > 0) name.resize(i);
  }
  depth = 0;
  for (std::size_t i = name.size(); i-- > 0;) {
    depth += name[i] == '>' || name[i] == ')' ? 1 : name[i] == '<' || name[i] == '(' ? -1 : 0;
    if (depth == 0 && name[i] == ' ') return name.substr(i + 1);
  }
  return name;
}

/// Returns the bare name; none for code without a symbol and for the entries of a PLT, which stand in no
/// table, so that the two name different ones.
std::string comparable(const std::string& name) {
  return name.starts_with("0x") || name.starts_with('{') || name.ends_with("@plt") ? "" : bareName(name);
}

/// Shares of functions in percent, from lines "  123  [.] name" of perf's report.
Counts sharesOfPerf(const std::string& data, const std::string& event) {
  const ProgramRun run =
      runCommand("perf report --no-children --stdio -g none --percent-limit 0 -F sample,sym --sort sym -i " +
                 data + " 2>/dev/null");
  Counts shares;
  double all = 0;
  bool wanted = event.empty();
  std::istringstream lines(run.said);
  for (std::string line; std::getline(lines, line);) {
    if (line.find(" of event '") != std::string::npos && !event.empty())
      wanted = line.find(" of event '" + event + "'") != std::string::npos;
    const std::size_t mode = line.find("  [");
    if (!wanted || mode == std::string::npos || line.starts_with('#')) continue;
    std::string name = line.substr(mode + 6);
    name.resize(name.find_last_not_of(' ') + 1);
    const double count = std::stod(line);
    all += count;
    shares[comparable(name)] += count;
  }
  for (auto& [name, share] : shares) share = 100 * share / all;
  return shares;
}

/// Returns the number of samples that perf script prints.
std::size_t samplesOfPerf(const std::string& data, const std::string& event) {
  const ProgramRun run = runCommand("perf script -F event -G -i " + data + " 2>/dev/null");
  std::size_t count = 0;
  std::istringstream lines(run.said);
  for (std::string line; std::getline(lines, line);)
    if (!line.empty() && (event.empty() || line.find(event + ":") != std::string::npos)) ++count;
  return count;
}

Counts sharesOf(const ProfileFigures& figures) {
  Counts shares;
  for (const auto& [name, count] : figures.byFunction)
    shares[comparable(name)] += 100.0 * static_cast<double>(count) / static_cast<double>(figures.samples);
  return shares;
}

/// In percentage points, for the few addresses that the two name by different tables.
constexpr double kTolerance = 0.5;

class PerfComparison : public testing::TestWithParam<Case> {};

TEST_P(PerfComparison, AgreesOnCountsAndOnTheMostFrequentFunctions) {
  const Case& tried = GetParam();
  const TestFolder folder;
  const std::string data = folder.path("perf.data");
  const std::string output =
      std::string(tried.options).find("-o -") != std::string::npos ? " > " + data : " -o " + data;
  const ProgramRun recorded =
      runCommand("perf record -q -c 200000 " + tried.options + output + " " + tried.command);
  if (recorded.status != 0 || samplesOfPerf(data, tried.event) == 0)
    GTEST_SKIP() << "perf does not work here: " << recorded.said;

  const ProgramRun run = runZelkit("convert " + data + " -o " + folder.path("x.json"));
  ASSERT_EQ(run.status, 0) << run.said;
  const ProfileFigures figures(folder.path("x.json"));
  EXPECT_EQ(figures.samples, samplesOfPerf(data, tried.event)) << run.said;

  const Counts ours = sharesOf(figures);
  const Counts perfs = sharesOfPerf(data, tried.event);
  std::vector<std::pair<double, std::string>> most;
  for (const auto& [name, share] : perfs) most.emplace_back(-share, name);
  std::sort(most.begin(), most.end());
  most.resize(std::min<std::size_t>(most.size(), 10));
  ASSERT_FALSE(most.empty());
  for (const auto& [share, name] : most) {
    const double own = ours.contains(name) ? ours.at(name) : 0;
    EXPECT_NEAR(own, -share, kTolerance) << "'" << name << "'\n" << run.said;
  }
}

INSTANTIATE_TEST_SUITE_P(
    Recordings, PerfComparison,
    testing::Values(Case{"PositionIndependent", "-e cpu-clock -g", kJob},
                    Case{"Static", "-e cpu-clock -g", RECORDED_JOB_STATIC},
                    Case{"ForkWithoutExec", "-e cpu-clock -g", kJob + " fork"},
                    Case{"LoadedAndUnloaded", "-e cpu-clock -g",
                         kJob + " load " RECORDED_LIBRARY_A " " RECORDED_LIBRARY_B},
                    Case{"Deep", "-e cpu-clock -g", kJob + " deep"},
                    Case{"NamedThreads", "-e cpu-clock -g", kJob + " threads"},
                    Case{"Compressed", "-z -e cpu-clock -g", kJob},
                    Case{"Pipe", "-o - -e cpu-clock -g", kJob},
                    Case{"TwoEvents", "-e cpu-clock -e task-clock -g", kJob, "cpu-clock"},
                    Case{"SystemWide", "-a -e cpu-clock -g", kJob}, Case{"Default", "", kJob}),
    [](const testing::TestParamInfo<Case>& tried) { return tried.param.name; });

}  // namespace
