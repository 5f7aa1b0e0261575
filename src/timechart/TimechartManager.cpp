#include "timechart/TimechartManager.h"

#include <algorithm>
#include <cstdio>
#include <vector>

#include "json/PerfJSONWriter.h"

TimechartManager* TimechartManager::_instance = nullptr;

namespace {

int gpuKey(int dimension, int device) {
  return static_cast<int>(static_cast<unsigned int>(dimension) * 10 + static_cast<unsigned int>(device));
}

/// A chart, and whether it was created by this call.
template <typename Chart>
struct Found {
  Chart* chart;
  bool made;
};

template <typename Chart, typename Make>
Found<Chart> orMake(Chart* existing, Make make) {
  return existing != nullptr ? Found<Chart>{existing, false} : Found<Chart>{make(), true};
}

void outNames(const std::map<int, std::string>& names) {
  for (const auto& [number, name] : names) std::printf("%d:\t %s\n", number, name.c_str());
  std::fflush(stdout);
}

}  // namespace

bool comparePPids(const ProcessChart* a, const ProcessChart* b) {
  return a->_ppid < b->_ppid;
}

TimechartManager* TimechartManager::Instance() {
  if (_instance == nullptr) _instance = new TimechartManager;
  return _instance;
}

void TimechartManager::init() {
  _counterStarted = {};
}

ProcessChart* TimechartManager::getProcessChart(int pid) const {
  return _processCharts.find(pid);
}

ProcessChart* TimechartManager::createProcessChart(int pid) {
  return _processCharts.add(pid, new ProcessChart(pid));
}

GPUChart* TimechartManager::getGPUChart(int dimension, int device) const {
  return _gpuCharts.find(gpuKey(dimension, device));
}

GPUChart* TimechartManager::createGPUChart(int dimension, int device) {
  return _gpuCharts.add(gpuKey(dimension, device), new GPUChart(dimension, device));
}

CPUChart* TimechartManager::getCPUChart(int cpu) const {
  return _cpuCharts.find(cpu);
}

CPUChart* TimechartManager::createCPUChart(int cpu) {
  return _cpuCharts.add(cpu, new CPUChart(cpu));
}

IRQChart* TimechartManager::getIRQChart(int irq) const {
  return _irqCharts.find(irq);
}

IRQChart* TimechartManager::createIRQChart(int irq) {
  return _irqCharts.add(irq, new IRQChart(irq));
}

bool TimechartManager::addStatusToProcessChart(ChartTime time, int pid, int status, int cpu,
                                               unsigned int sub) {
  const auto found = orMake(getProcessChart(pid), [&] { return createProcessChart(pid); });
  found.chart->addStatus(time, static_cast<unsigned int>(status), static_cast<unsigned int>(cpu), sub);
  return found.made;
}

bool TimechartManager::addCountersToProcessChart(ChartTime time, int cpu, int pid, unsigned int cycles,
                                                 const unsigned int* l1, const unsigned int* l2) {
  const auto found = orMake(getProcessChart(pid), [&] { return createProcessChart(pid); });
  if (_counterStarted.get(cpu)) {
    found.chart->addCounters(time, cycles, l1, l2);
  } else {
    _counterStarted.set(cpu, true);
  }
  return found.made;
}

bool TimechartManager::addStatusToGPUChart(ChartTime time, int dimension, int device, int status,
                                           unsigned int sub) {
  const auto found =
      orMake(getGPUChart(dimension, device), [&] { return createGPUChart(dimension, device); });
  found.chart->addStatus(time, status, sub);
  return found.made;
}

bool TimechartManager::addValueToCPUChart(ChartTime time, int cpu, int kind, int value) {
  const auto found = orMake(getCPUChart(cpu), [&] { return createCPUChart(cpu); });
  found.chart->addValue(time, kind, value);
  return found.made;
}

bool TimechartManager::addValueToIRQChart(ChartTime time, int irq, int value, int cpu) {
  const auto found = orMake(getIRQChart(irq), [&] { return createIRQChart(irq); });
  found.chart->addValue(time, value, cpu);
  return found.made;
}

bool TimechartManager::addEvent(double time, int pid, unsigned int code, const std::string& name,
                                const std::string& args) {
  const auto found = orMake(getProcessChart(pid), [&] { return createProcessChart(pid); });
  found.chart->addEvent(time, code, name, args);
  _eventChart.addEvent(time, code, name, args);
  return found.made;
}

void TimechartManager::setProcessPPid(int pid, int ppid) {
  orMake(getProcessChart(pid), [&] { return createProcessChart(pid); }).chart->_ppid = ppid;
}

void TimechartManager::setProcessName(int pid, const std::string& name, bool force) {
  ProcessChart* chart = orMake(getProcessChart(pid), [&] { return createProcessChart(pid); }).chart;
  if (force || chart->_name.empty()) chart->_name = name;
}

void TimechartManager::setLastPidForCpu(int pid, int cpu) {
  _lastPid.set(cpu, pid);
}

int TimechartManager::pidMigratedFrom(int pid, int cpu) const {
  int other = 0;
  for (const int last : _lastPid) {
    if (last == pid && other != cpu) return other;
    ++other;
  }
  return -1;
}

void TimechartManager::saveLastStateForCPU(int cpu) {
  if (const CPUChart* chart = getCPUChart(cpu); chart != nullptr) _lastState.set(cpu, chart->getBusyState());
}

int TimechartManager::getLastStateForCPU(int cpu) const {
  return _lastState.get(cpu);
}

void TimechartManager::addIrqName(int irq, const std::string& name) {
  _irqNames.emplace(irq, name);
}

void TimechartManager::addSirqName(int vector, const std::string& name) {
  _sirqNames.emplace(vector, name);
}

std::string TimechartManager::getIRQName(int irq) const {
  const bool soft = irq >= kFirstSoftInterrupt;
  const auto& names = soft ? _sirqNames : _irqNames;
  const auto found = names.find(soft ? irq - kFirstSoftInterrupt : irq);
  if (found != names.end()) return found->second;
  std::printf("IRQ name not found: %d\n", irq);
  return "IRQ";
}

void TimechartManager::outIrqNames() const {
  outNames(_irqNames);
}

void TimechartManager::outSirqNames() const {
  outNames(_sirqNames);
}

std::string TimechartManager::getCounterName(unsigned int group, unsigned int index) const {
  if (group == 0) return _cycleCounterName;
  if (group == 1 && index < _l1CounterNames.size()) return _l1CounterNames[index];
  if (group == 2 && index < _l2CounterNames.size()) return _l2CounterNames[index];
  return {};
}

void TimechartManager::writeData(PerfJSONWriter& writer) const {
  writer.writeStructStart();
  writer.writeArrayStart("entries");
  outCPUCharts(writer);
  outGPUCharts(writer);
  outIRQCharts(writer);
  outProcessCharts(writer);
  outEventChart(writer);
  writer.writeArrayEnd();
  writer.writeStructEnd();
}

void TimechartManager::outCPUCharts(PerfJSONWriter& writer) const {
  for (const auto& [cpu, chart] : _cpuCharts.inOrder()) chart->outCPUChart(writer);
}

void TimechartManager::outGPUCharts(PerfJSONWriter& writer) const {
  for (const auto& [core, chart] : _gpuCharts.inOrder()) chart->outGPUChart(writer);
}

void TimechartManager::outIRQCharts(PerfJSONWriter& writer) const {
  for (const auto& [irq, chart] : _irqCharts.inOrder()) chart->outIRQChart(writer);
}

// Sorted by parent instead of walking the process tree: the viewer nests the rows.
void TimechartManager::outProcessCharts(PerfJSONWriter& writer) const {
  auto charts = _processCharts.inOrder();
  std::stable_sort(charts.begin(), charts.end(),
                   [](const auto& a, const auto& b) { return comparePPids(a.second, b.second); });
  for (const auto& [pid, chart] : charts) chart->outProcessChart(writer);
}

void TimechartManager::outEventChart(PerfJSONWriter& writer) const {
  _eventChart.outEventChart(writer);
}
