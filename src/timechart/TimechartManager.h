#pragma once

#include <array>
#include <map>
#include <string>

#include "timechart/CPUChart.h"
#include "timechart/ChartTable.h"
#include "timechart/ChartTime.h"
#include "timechart/EventChart.h"
#include "timechart/GPUChart.h"
#include "timechart/IRQChart.h"
#include "timechart/PerCpu.h"
#include "timechart/ProcessChart.h"

class PerfJSONWriter;

/// Owns all charts. Decoders report what they learn from a record; the manager finds or creates the chart and
/// keeps state that concerns several charts. Charts live until the process ends.
///
/// Times of records are nanoseconds of the recording's clock, which ChartTime converts. The add operations
/// return true if they created the chart. A fact about a CPU that has no slot is dropped, see PerCpu.
class TimechartManager {
 public:
  static TimechartManager* Instance();

  /// Resets which CPUs have had a counter sample.
  void init();

  // get... returns null for a chart that does not exist, create... adds it.
  ProcessChart* getProcessChart(int pid) const;
  ProcessChart* createProcessChart(int pid);
  GPUChart* getGPUChart(int dimension, int device) const;
  GPUChart* createGPUChart(int dimension, int device);
  CPUChart* getCPUChart(int cpu) const;
  CPUChart* createCPUChart(int cpu);
  IRQChart* getIRQChart(int irq) const;
  IRQChart* createIRQChart(int irq);

  /// Add a fact to a chart, see the chart's addStatus or addValue.
  bool addStatusToProcessChart(ChartTime time, int pid, int status, int cpu, unsigned int sub);
  /// Drops the first sample of every CPU, which counts from an unknown start.
  bool addCountersToProcessChart(ChartTime time, int cpu, int pid, unsigned int cycles,
                                 const unsigned int* l1, const unsigned int* l2);
  bool addStatusToGPUChart(ChartTime time, int dimension, int device, int status, unsigned int sub);
  bool addValueToCPUChart(ChartTime time, int cpu, int kind, int value);
  bool addValueToIRQChart(ChartTime time, int irq, int value, int cpu);
  /// Adds a trace marker to its process and to the list of all. `time` is in seconds of the ftrace text.
  bool addEvent(double time, int pid, unsigned int code, const std::string& name, const std::string& args);

  /// Sets the parent of a task.
  void setProcessPPid(int pid, int ppid);
  /// Without `force` an existing name is kept.
  void setProcessName(int pid, const std::string& name, bool force);

  /// Records the process switched in on the CPU.
  void setLastPidForCpu(int pid, int cpu);
  /// Returns the lowest CPU other than `cpu` on which the process was the last to be switched in, or -1.
  int pidMigratedFrom(int pid, int cpu) const;
  /// Save the CPU's busy value; return the saved one.
  void saveLastStateForCPU(int cpu);
  int getLastStateForCPU(int cpu) const;

  // Add a name unless the number has one. The number of a soft interrupt is its vector.
  void addIrqName(int irq, const std::string& name);
  void addSirqName(int vector, const std::string& name);
  /// Returns the name, or prints a line on standard output and returns "IRQ".
  std::string getIRQName(int irq) const;
  void outIrqNames() const;
  void outSirqNames() const;

  /// Returns the name of a counter: group 0 is the cycle counter, whatever the index, 1 the first level and 2
  /// the second. Returns an empty text for other groups and indices.
  std::string getCounterName(unsigned int group, unsigned int index) const;

  /// Turns the markers of the ftrace text into events, see TraceFileInspection.cpp.
  void inspectTraceFile();
  /// Reads the names that records do not contain, see ChartFinalization.cpp.
  void finalizeChartData();

  /// Writes the whole timechart document: one flat array of entries.
  void writeData(PerfJSONWriter& writer) const;
  void outCPUCharts(PerfJSONWriter& writer) const;
  void outGPUCharts(PerfJSONWriter& writer) const;
  void outIRQCharts(PerfJSONWriter& writer) const;
  /// Writes the processes, ascending by parent, then by pid.
  void outProcessCharts(PerfJSONWriter& writer) const;
  void outEventChart(PerfJSONWriter& writer) const;

  /// The name of a counter that is not in use; its series are not written.
  static constexpr const char* kUnusedCounter = "ffffffff";

 private:
  TimechartManager() = default;

  void readSoftInterruptNames();
  bool readActiveCounters();
  void translateCounterNames();

  static TimechartManager* _instance;

  ChartTable<GPUChart> _gpuCharts;  ///< the number is dimension * 10 + device
  ChartTable<ProcessChart> _processCharts;
  ChartTable<CPUChart> _cpuCharts;
  ChartTable<IRQChart> _irqCharts;
  EventChart _eventChart;
  std::map<int, std::string> _irqNames;
  std::map<int, std::string> _sirqNames;
  PerCpu<int> _lastPid;    ///< the process switched in last
  PerCpu<int> _lastState;  ///< the busy value at the last interrupt entry
  PerCpu<bool> _counterStarted;
  std::string _cycleCounterName;
  std::array<std::string, ProcessChart::kL1Counters> _l1CounterNames;
  std::array<std::string, ProcessChart::kL2Counters> _l2CounterNames;
};

/// Returns whether the parent of `a` has the lower number. Charts of one parent keep the order of their own
/// numbers.
bool comparePPids(const ProcessChart* a, const ProcessChart* b);
