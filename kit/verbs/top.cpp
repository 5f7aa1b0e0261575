// zelkit top RECORDING|CAPTURE|DOCUMENT: prints what takes the time.

#include <algorithm>
#include <cstdio>
#include <map>

#include "document/ByKind.h"
#include "document/DocumentReader.h"
#include "document/SampleRanking.h"
#include "document/TimechartLoad.h"
#include "verbs/Documents.h"
#include "verbs/Printable.h"

namespace zelkit {

namespace {

constexpr double kMillisecondsPerSecond = 1e3;
/// Maximum number of callers shown below a function.
constexpr std::size_t kMostCallers = 5;

using By = SampleRanking::By;
const std::map<std::string, By> kGroupings = {{"function", By::kFunction}, {"library", By::kLibrary},
                                              {"process", By::kProcess},   {"thread", By::kThread},
                                              {"core", By::kCore},         {"file", By::kFile}};

std::vector<std::string> namesOf(const std::map<std::string, By>& groupings) {
  std::vector<std::string> names;
  names.reserve(groupings.size());
  for (const auto& [name, grouping] : groupings) names.push_back(name);
  return names;
}

double percent(double part, double whole) {
  return whole > 0.0 ? 100.0 * part / whole : 0.0;
}

class TopVerb : public Verb {
 public:
  TopVerb()
      : Verb("top", "prints what takes most samples, or the load of cores and tasks and the longest waits") {}

  void addOptions(VerbOptions& options) override {
    options.addText("INPUT", _input, "a document, a perf.data file or a capture",
                    VerbOptions::Need::kRequired);
    options.addNumber("-n", _most, 0, 1000000, "rows that are shown");
    options.addChoice("--by", _by, namesOf(kGroupings), "what samples are counted by");
    options.addFlag("--callers", _callers, "show who called");
    _options.addTo(options);
  }

  Status run() override {
    Documents documents(_options);
    if (const Status status = documents.add(_input); status != Status::kDone) return status;
    Status status = Status::kDone;
    for (const std::string& path : documents.paths())
      if (!show(path)) status = Status::kUnreadable;
    return status;
  }

 private:
  /// Returns whether the document is intact; of a damaged one the part before the damage is shown.
  bool show(const std::string& path) const {
    SampleRanking ranking(kGroupings.at(_by), _callers);
    TimechartLoad load(_most);
    ByKind both(ranking, load);
    FileSource source(path);
    const ReadOutcome outcome = readDocument(source, both);
    if (outcome.kind == DocumentKind::kProfile) {
      showProfile(ranking);
    } else {
      load.finish();
      showTimechart(load);
    }
    if (!outcome.damage.empty())
      std::fprintf(stderr, "zelkit: %s; the part before the damage is shown\n", outcome.damage.c_str());
    return outcome.damage.empty();
  }

  void showProfile(const SampleRanking& ranking) const {
    const auto all = static_cast<double>(ranking.sampleCount());
    std::printf("%llu samples in %.3f s\n", static_cast<unsigned long long>(ranking.sampleCount()),
                ranking.duration());
    std::printf(ranking.countsFrames() ? "    self     %%     total     %%  name\n"
                                       : " samples     %%  name\n");
    for (const SampleRanking::Group& group : ranking.groups(_most)) {
      const auto total = static_cast<double>(group.total);
      std::printf("%8llu %5.1f", static_cast<unsigned long long>(group.self),
                  percent(static_cast<double>(group.self), all));
      if (ranking.countsFrames())
        std::printf("  %8llu %5.1f", static_cast<unsigned long long>(group.total), percent(total, all));
      const std::string library = group.library.empty() ? "" : "  [" + group.library + "]";
      std::printf("  %s\n", printable(group.name + library).c_str());
      for (std::size_t i = 0; i < std::min(group.callers.size(), kMostCallers); ++i)
        std::printf("%20llu %5.1f    from %s\n", static_cast<unsigned long long>(group.callers[i].second),
                    percent(static_cast<double>(group.callers[i].second), total),
                    printable(group.callers[i].first).c_str());
    }
  }

  void showTimechart(const TimechartLoad& load) const {
    std::printf("%.6f s\n  busy ms      %%  core\n", load.duration());
    for (const TimechartLoad::Core& core : load.cores())
      std::printf("%9.3f %6.1f  %s\n", core.busy * kMillisecondsPerSecond,
                  percent(core.busy, load.duration()), printable(core.name).c_str());
    std::printf("   run ms      %%   for CPU   for I/O   for GPU  task\n");
    for (const TimechartLoad::Task& task : load.tasks(_most))
      std::printf("%9.3f %6.1f %9.3f %9.3f %9.3f  %s\n", task.running * kMillisecondsPerSecond,
                  percent(task.running, load.duration()), task.waitingForCpu * kMillisecondsPerSecond,
                  task.waitingForInput * kMillisecondsPerSecond, task.waitingForGpu * kMillisecondsPerSecond,
                  printable(task.name).c_str());
    std::printf("  wait ms          at s  task\n");
    for (const TimechartLoad::Wait& wait : load.waits())
      std::printf("%9.3f %13.6f  %s: %s\n", wait.length * kMillisecondsPerSecond, wait.start,
                  printable(wait.task).c_str(), printable(wait.what).c_str());
  }

  std::string _input;
  std::size_t _most = 20;
  std::string _by = "function";
  bool _callers = false;
  ConversionOptions _options;
};

TopVerb verb;

}  // namespace

}  // namespace zelkit
