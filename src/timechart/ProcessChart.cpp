#include "timechart/ProcessChart.h"

#include <algorithm>

#include "json/PerfJSONWriter.h"
#include "records/PerfRecordComm.h"
#include "timechart/ChartEntry.h"
#include "timechart/IssueKinds.h"
#include "timechart/TimeOrder.h"
#include "timechart/TimechartManager.h"

/// The values that all entries of a task share.
struct ProcessChart::Head {
  std::string label;
  std::string treeId;
  unsigned int show;

  /// Writes the first keys of an entry, in the usual order.
  void write(ChartEntry& entry, const std::string& id, const char* type) const {
    entry.text("id", id).text("name", label).text("treeId", treeId).text("type", type);
  }
};

/// Derives the series of a task from its facts, which are added in order of time.
struct ProcessChart::Series {
  explicit Series(const std::vector<Fact>& facts) {
    for (const Fact& fact : facts) take(fact);
  }

  void take(const Fact& fact) {
    if (fact.status >= kIssue) {
      issue[fact.status - kIssue].push_back({fact.time, fact.value});
    } else if (fact.status == kWaitsForGpu || fact.status == kGpuAnswered) {
      waitedForGpu = true;
      addChange(waitGpu, fact.time, fact.status == kWaitsForGpu ? 1 : 0);
    } else {
      setRunning(fact.cpu, fact.time, fact.status == kRunning ? 1 : 0);
      setRunning(fact.left, fact.time, 0);
      addChange(waitCpu, fact.time, fact.status == kWoken ? 1 : 0);
      addChange(waitIo, fact.time, fact.status == kBlocked ? 1 : 0);
    }
  }

  void setRunning(int cpu, double time, unsigned int value) {
    if (ChartSamples* series = running.find(cpu); series != nullptr) addChange(*series, time, value);
  }

  bool hasIssues() const {
    return std::any_of(issue.begin(), issue.end(),
                       [](const ChartSamples& series) { return !series.empty(); });
  }

  PerCpu<ChartSamples> running;
  ChartSamples waitCpu;
  ChartSamples waitGpu;
  bool waitedForGpu = false;
  ChartSamples waitIo;
  std::array<ChartSamples, kIssueKinds.size()> issue;
};

ProcessChart::ProcessChart(int pid) : _ppid(pid), _pid(pid) {
  const PerfRecordComm* process = PerfRecordComm::findProcessRecord(0, static_cast<unsigned int>(pid));
  if (process == nullptr) return;
  _ppid = static_cast<int>(process->pid);
  _name = process->getName();
}

void ProcessChart::addStatus(ChartTime time, unsigned int status, unsigned int cpuNumber, unsigned int sub) {
  if (!time.isSelected() || (status > kGpuAnswered && status < kIssue) ||
      status >= kIssue + kIssueKinds.size())
    return;
  const int cpu = static_cast<int>(cpuNumber);
  // A task that runs on one CPU has left the one where it was last seen, so it is never shown as running on
  // two.
  const int left = status == kRunning ? TimechartManager::Instance()->pidMigratedFrom(_pid, cpu) : -1;
  _facts.add({time.seconds(), static_cast<std::uint8_t>(status), issueValue(sub), PerCpu<int>::slotOf(cpu),
              PerCpu<int>::slotOf(left)});
}

void ProcessChart::addCounters(ChartTime time, unsigned int cycles, const unsigned int* l1,
                               const unsigned int* l2) {
  if (!time.isSelected()) return;
  Counters counters = {time.seconds(), {cycles}};
  std::copy_n(l2, kL2Counters, std::copy_n(l1, kL1Counters, counters.values.begin() + 1));
  _counters.add(counters);
}

void ProcessChart::addEvent(double time, unsigned int code, const std::string& name,
                            const std::string& args) {
  _events.add(time, code, name, args);
}

ProcessChart::Head ProcessChart::head(const Series& series) const {
  return {chartText("%d - ", _pid) + _name,
          _ppid == _pid ? chartText("%d_proc_root", _ppid) : chartText("%d_%d_proc_root", _pid, _ppid),
          series.hasIssues() || !_events.empty() ? 1U : 0U};
}

void ProcessChart::outProcessChart(PerfJSONWriter& writer) const {
  const Series series(inTimeOrder(_facts));
  const Head shared = head(series);
  int cpu = 0;
  for (const ChartSamples& running : series.running) outRunning(writer, shared, cpu++, running);
  outWaitIo(writer, shared, series.waitIo);
  outWaitCpu(writer, shared, series.waitCpu);
  if (series.waitedForGpu) outWaitGpu(writer, shared, series.waitGpu);
  for (std::size_t kind = 0; kind < kIssueKinds.size(); ++kind)
    outIssue(writer, shared, kind, series.issue[kind]);
  outEvents(writer, shared);
  outCounters(writer, shared);
}

void ProcessChart::outRunning(PerfJSONWriter& writer, const Head& head, int cpu,
                              const ChartSamples& series) const {
  if (series.empty()) return;
  ChartEntry entry(writer);
  head.write(entry, chartText("proc-%d-r%d", _pid, cpu), "binary");
  entry.text("class", "proc:running").show(head.show).text("tip", chartText("Running on CPU %d", cpu));
  entry.hints(cpuColours(cpu)).writeData(series, PointSeparator::commaAndBlank);
}

void ProcessChart::outWaitIo(PerfJSONWriter& writer, const Head& head, const ChartSamples& series) const {
  if (series.empty()) return;
  ChartEntry entry(writer);
  head.write(entry, chartText("proc-%d-d", _pid), "binary");
  entry.text("class", "proc:wait").text("tip", "Waiting for I/O").show(head.show);
  entry.hints({"#b0e0e6", "#b0e0e6"}).writeData(series);
}

void ProcessChart::outWaitCpu(PerfJSONWriter& writer, const Head& head, const ChartSamples& series) const {
  if (series.empty()) return;
  ChartEntry entry(writer);
  head.write(entry, chartText("proc-%d-w", _pid), "binary");
  entry.text("class", "proc:wait").text("tip", "Waiting for CPU").show(head.show);
  entry.hints({"#f0c44c", "#f0e68c"}).writeData(series);
}

/// Unlike the other waiting series, this one is written even if it is always 0.
void ProcessChart::outWaitGpu(PerfJSONWriter& writer, const Head& head, const ChartSamples& series) const {
  ChartEntry entry(writer);
  head.write(entry, chartText("proc-%d-g", _pid), "binary");
  entry.text("tip", "Waiting for GPU").text("class", "proc:wait").show(head.show);
  entry.hints({"#db7093", "#db7093"}).writeData(series);
}

void ProcessChart::outIssue(PerfJSONWriter& writer, const Head& head, std::size_t kind,
                            const ChartSamples& series) const {
  if (series.empty()) return;
  ChartEntry entry(writer);
  head.write(entry, chartText("proc-%d-i%d", _pid, static_cast<int>(kind)), "marker");
  entry.text("class", "proc:issue").show(head.show).text("tip", kIssueKinds[kind].taskTip);
  entry.hints(kIssueKinds[kind].colours).writeData(series);
}

void ProcessChart::outEvents(PerfJSONWriter& writer, const Head& head) const {
  if (_events.empty()) return;
  ChartEntry entry(writer);
  head.write(entry, chartText("proc-%d-e", _pid), "events");
  entry.text("class", "proc:events")
      .text("tip", "FTrace Markers")
      .show(head.show)
      .hints({"#cd5c5c", "#cd5c5c"});
  _events.writeData(writer);
  writer.writeStructEnd();
}

void ProcessChart::outCounters(PerfJSONWriter& writer, const Head& head) const {
  if (_counters.empty()) return;
  const TimechartManager& manager = *TimechartManager::Instance();
  const std::vector<Counters> counters = inTimeOrder(_counters);
  std::size_t index = 0;
  outCounter(writer, head, counters, index++, manager.getCounterName(0, 0));
  for (unsigned int i = 0; i < kL1Counters; ++i)
    outCounter(writer, head, counters, index++, manager.getCounterName(1, i));
  for (unsigned int i = 0; i < kL2Counters; ++i)
    outCounter(writer, head, counters, index++, manager.getCounterName(2, i));
}

/// Each point consists of the previous sample's time and this sample's value, so that an increment reported
/// when the task is switched out becomes a bar that starts when it was switched in. Of equal values the first
/// two are written, and a closing point ends the last bar.
void ProcessChart::outCounter(PerfJSONWriter& writer, const Head& head, const std::vector<Counters>& counters,
                              std::size_t index, const std::string& counterName) const {
  if (counterName == TimechartManager::kUnusedCounter) return;
  ChartSamples bars;
  double lastTime = 0.0;
  unsigned int last = 0;
  unsigned int beforeLast = 0;
  for (const Counters& sample : counters) {
    const unsigned int value = sample.values[index];
    if (value != last || beforeLast != last) {
      bars.push_back({lastTime, value});
      beforeLast = last;
      last = value;
    }
    lastTime = sample.time;
  }
  if (bars.empty()) return;
  bars.push_back({lastTime, 0});

  ChartEntry entry(writer);
  entry.text("id", chartText("proc-%d-ctr%d", _pid, static_cast<int>(index))).text("name", head.label);
  entry.text("tip", counterName).text("treeId", counterTreeId(index)).text("type", "bar");
  entry.text("class", "ctr:").show(head.show).hints({"#232381", "#a3a3e6"}).writeData(bars);
}

std::string ProcessChart::counterTreeId(std::size_t index) const {
  const int number = static_cast<int>(index);
  return _ppid == _pid ? chartText("%d_%d_proc_root", number, _ppid)
                       : chartText("%d_%d_%d_proc_root", number, _pid, _ppid);
}
