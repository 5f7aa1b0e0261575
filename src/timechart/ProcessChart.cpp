#include "timechart/ProcessChart.h"

#include <algorithm>

#include "json/PerfJSONWriter.h"
#include "records/PerfRecordComm.h"
#include "run/TimeBase.h"
#include "timechart/ChartEntry.h"
#include "timechart/IssueValue.h"
#include "timechart/TimechartManager.h"

namespace {

struct IssueLook {
  const char* tip;
  ChartColours colours;
};

constexpr std::array<IssueLook, 4> kIssueLooks = {{
    {"Issue", {"#66ccff", "#66ccff"}},
    {"GL Issue", {"#00ff00", "#00ff00"}},
    {"CL Issue", {"#993CF3", "#993CF3"}},
    {"C2D Issue", {"#f660ab", "#f660ab"}},
}};

}  // namespace

/// What all entries of a task share.
struct ProcessChart::Head {
  std::string label;
  std::string treeId;
  unsigned int show;

  /// The first keys of an entry, in the order of nearly all of them.
  void write(ChartEntry& entry, const std::string& id, const char* type) const {
    entry.text("id", id).text("name", label).text("treeId", treeId).text("type", type);
  }
};

ProcessChart::ProcessChart(int pid) : _ppid(pid), _pid(pid) {
  const PerfRecordComm* process = PerfRecordComm::findProcessRecord(0, static_cast<unsigned int>(pid));
  if (process == nullptr) return;
  _ppid = static_cast<int>(process->pid);
  _name = process->getName();
}

void ProcessChart::addRunning(double time, int cpu, unsigned int value) {
  if (ChartSeries* series = _running.find(cpu); series != nullptr) series->add(time, value);
}

/// Puts the task onto the CPU, and off the one where it was last seen: it never shows as running on two at
/// once.
void ProcessChart::run(double time, int cpu) {
  addRunning(time, cpu, 1);
  addRunning(time, TimechartManager::Instance()->pidMigratedFrom(_pid, cpu), 0);
  _waitCpu.add(time, 0);
  _waitIo.add(time, 0);
}

void ProcessChart::addStatus(unsigned long long time, unsigned int status, unsigned int cpuNumber,
                             unsigned int sub) {
  const auto x = selectedTime(doTimeConversion(time));
  if (!x) return;
  const int cpu = static_cast<int>(cpuNumber);
  switch (status) {
    case kRunning:
      run(*x, cpu);
      break;
    case kBlocked:
    case kWoken:
    case kStopped:
      _waitIo.add(*x, status == kBlocked ? 1 : 0);
      _waitCpu.add(*x, status == kWoken ? 1 : 0);
      addRunning(*x, cpu, 0);
      break;
    case kWaitsForGpu:
    case kGpuAnswered:
      _waitGpu.add(*x, status == kWaitsForGpu ? 1 : 0);
      break;
    default:
      if (status >= kIssue && status < kIssue + _issue.size())
        _issue[status - kIssue].add(*x, issueValue(sub));
  }
}

void ProcessChart::addCounters(unsigned long long time, unsigned int cycles, const unsigned int* l1,
                               const unsigned int* l2) {
  const auto x = selectedTime(doTimeConversion(time));
  if (!x) return;
  _cycleCounter.add(*x, cycles);
  for (std::size_t i = 0; i < kL1Counters; ++i) _l1Counters[i].add(*x, l1[i]);
  for (std::size_t i = 0; i < kL2Counters; ++i) _l2Counters[i].add(*x, l2[i]);
}

void ProcessChart::addEvent(double time, unsigned int code, const std::string& name,
                            const std::string& args) {
  _events.add(time, code, name, args);
}

void ProcessChart::sort() {
  for (int cpu = 0; cpu < _running.kPlaces; ++cpu) _running.find(cpu)->sort();
  for (ChartSeries& series : _issue) series.sort();
  for (ChartSeries* series : {&_waitIo, &_waitCpu, &_waitGpu, &_cycleCounter}) series->sort();
  for (ChartSeries& series : _l1Counters) series.sort();
  for (ChartSeries& series : _l2Counters) series.sort();
}

ProcessChart::Head ProcessChart::head() const {
  const bool hasIssues =
      std::any_of(_issue.begin(), _issue.end(), [](const ChartSeries& series) { return !series.empty(); });
  return {chartText("%d - ", _pid) + _name,
          _ppid == _pid ? chartText("%d_proc_root", _ppid) : chartText("%d_%d_proc_root", _pid, _ppid),
          hasIssues || !_events.empty() ? 1U : 0U};
}

void ProcessChart::outProcessChart(PerfJSONWriter& writer) {
  sort();
  const Head shared = head();
  for (int cpu = 0; cpu < _running.kPlaces; ++cpu) outRunning(writer, shared, cpu);
  outWaitIo(writer, shared);
  outWaitCpu(writer, shared);
  outWaitGpu(writer, shared);
  for (std::size_t kind = 0; kind < _issue.size(); ++kind) outIssue(writer, shared, kind);
  outEvents(writer, shared);
  outCounters(writer, shared);
}

void ProcessChart::outRunning(PerfJSONWriter& writer, const Head& head, int cpu) {
  const ChartSeries& series = *_running.find(cpu);
  if (!hasChanges(series)) return;
  ChartEntry entry(writer);
  head.write(entry, chartText("proc-%d-r%d", _pid, cpu), "binary");
  entry.text("class", "proc:running").show(head.show).text("tip", chartText("Running on CPU %d", cpu));
  entry.hints(cpuColours(cpu)).writeChanges(series, kRunningPointFormat);
}

void ProcessChart::outWaitIo(PerfJSONWriter& writer, const Head& head) const {
  if (!hasChanges(_waitIo)) return;
  ChartEntry entry(writer);
  head.write(entry, chartText("proc-%d-d", _pid), "binary");
  entry.text("class", "proc:wait").text("tip", "Waiting for I/O").show(head.show);
  entry.hints({"#b0e0e6", "#b0e0e6"}).writeChanges(_waitIo);
}

void ProcessChart::outWaitCpu(PerfJSONWriter& writer, const Head& head) const {
  if (!hasChanges(_waitCpu)) return;
  ChartEntry entry(writer);
  head.write(entry, chartText("proc-%d-w", _pid), "binary");
  entry.text("class", "proc:wait").text("tip", "Waiting for CPU").show(head.show);
  entry.hints({"#f0c44c", "#f0e68c"}).writeChanges(_waitCpu);
}

/// Unlike the other two, this one shows even if it never left 0.
void ProcessChart::outWaitGpu(PerfJSONWriter& writer, const Head& head) const {
  if (_waitGpu.empty()) return;
  ChartEntry entry(writer);
  head.write(entry, chartText("proc-%d-g", _pid), "binary");
  entry.text("tip", "Waiting for GPU").text("class", "proc:wait").show(head.show);
  entry.hints({"#db7093", "#db7093"}).writeChanges(_waitGpu);
}

void ProcessChart::outIssue(PerfJSONWriter& writer, const Head& head, std::size_t kind) const {
  if (_issue[kind].empty()) return;
  ChartEntry entry(writer);
  head.write(entry, chartText("proc-%d-i%d", _pid, static_cast<int>(kind)), "marker");
  entry.text("class", "proc:issue").show(head.show).text("tip", kIssueLooks[kind].tip);
  entry.hints(kIssueLooks[kind].colours).writeAll(_issue[kind]);
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
  if (_cycleCounter.empty()) return;
  const TimechartManager& manager = *TimechartManager::Instance();
  int index = 0;
  outCounter(writer, head, index++, _cycleCounter, manager.getCounterName(0, 0));
  for (unsigned int i = 0; i < kL1Counters; ++i)
    outCounter(writer, head, index++, _l1Counters[i], manager.getCounterName(1, i));
  for (unsigned int i = 0; i < kL2Counters; ++i)
    outCounter(writer, head, index++, _l2Counters[i], manager.getCounterName(2, i));
}

/// Each point pairs the time of the sample before it with a value, so that a delta reported when the task is
/// switched out becomes a bar that begins where it was switched in. Of equal values the first two are
/// written, and a closing point ends the last bar.
void ProcessChart::outCounter(PerfJSONWriter& writer, const Head& head, int index, const ChartSeries& series,
                              const std::string& counterName) const {
  if (counterName == TimechartManager::kUnusedCounter) return;
  ChartEntry entry(writer);
  bool started = false;
  double lastTime = 0.0;
  unsigned int last = 0;
  unsigned int beforeLast = 0;
  for (const ChartEntryS& sample : series.samples()) {
    if (sample.value != last || beforeLast != last) {
      if (!started) {
        entry.text("id", chartText("proc-%d-ctr%d", _pid, index))
            .text("name", head.label)
            .text("tip", counterName);
        entry.text("treeId", counterTreeId(index)).text("type", "bar").text("class", "ctr:").show(head.show);
        entry.hints({"#232381", "#a3a3e6"}).openData();
        started = true;
      }
      entry.point(kPointFormat, lastTime, sample.value);
      beforeLast = last;
      last = sample.value;
    }
    lastTime = sample.time;
  }
  if (!started) return;
  entry.point(kPointFormat, lastTime, 0);
  entry.closeData();
}

std::string ProcessChart::counterTreeId(int index) const {
  return _ppid == _pid ? chartText("%d_%d_proc_root", index, _ppid)
                       : chartText("%d_%d_%d_proc_root", index, _pid, _ppid);
}
