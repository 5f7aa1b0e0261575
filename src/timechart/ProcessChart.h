#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "timechart/ArrivalList.h"
#include "timechart/ChartEvents.h"
#include "timechart/ChartSeries.h"
#include "timechart/ChartTime.h"
#include "timechart/PerCpu.h"

class PerfJSONWriter;

/// The series of one task: when it ran on each CPU, what it waited for, the GPU work that it issued, its
/// trace markers and its hardware counters.
class ProcessChart {
 public:
  /// Facts about a task. kIssue is the first of four numbers.
  enum Status {
    kRunning = 0,      ///< switched in
    kBlocked = 1,      ///< switched out in an uninterruptible sleep
    kWoken = 2,        ///< made runnable
    kStopped = 3,      ///< switched out in any other state
    kWaitsForGpu = 4,  ///< began waiting for the GPU
    kGpuAnswered = 5,  ///< stopped waiting for the GPU
    kIssue = 10,       ///< issued GPU work
  };

  static constexpr std::size_t kL1Counters = 4;
  static constexpr std::size_t kL2Counters = 2;

  /// Name and parent are those of the recording's process with that tid, if there is one so far.
  explicit ProcessChart(int pid);

  /// Adds a fact. A task is in one state at a time, so entering one leaves the others. `sub` is 1 for an
  /// issue that ends a frame. An unknown status is ignored.
  void addStatus(ChartTime time, unsigned int status, unsigned int cpu, unsigned int sub);

  /// Adds a sample to each counter series: the cycles, four of the first level, two of the second.
  void addCounters(ChartTime time, unsigned int cycles, const unsigned int* l1, const unsigned int* l2);

  /// Adds a trace marker; its time is in seconds of the ftrace text.
  void addEvent(double time, unsigned int code, const std::string& name, const std::string& args);

  /// Writes the entries of the task's series.
  void outProcessChart(PerfJSONWriter& writer) const;

  int _ppid;          ///< the parent, by which the viewer groups; the task itself if unknown
  std::string _name;  ///< may be empty

 private:
  struct Head;
  struct Series;

  /// A fact about the task. The series are derived from facts when the document is written.
  struct Fact {
    double time;          ///< seconds relative to gtodAtStart
    std::uint8_t status;  ///< see Status
    std::uint8_t value;   ///< see issueValue; for issues only
    std::int8_t cpu;      ///< -1 for one without a slot
    std::int8_t left;     ///< the CPU where the task was last seen and that it leaves, or -1
  };

  /// One sample of each counter series.
  struct Counters {
    double time;  ///< seconds relative to gtodAtStart
    std::array<unsigned int, 1 + kL1Counters + kL2Counters> values;
  };

  Head head(const Series& series) const;
  void outRunning(PerfJSONWriter& writer, const Head& head, int cpu, const ChartSamples& series) const;
  void outWaitIo(PerfJSONWriter& writer, const Head& head, const ChartSamples& series) const;
  void outWaitCpu(PerfJSONWriter& writer, const Head& head, const ChartSamples& series) const;
  void outWaitGpu(PerfJSONWriter& writer, const Head& head, const ChartSamples& series) const;
  void outIssue(PerfJSONWriter& writer, const Head& head, std::size_t kind, const ChartSamples& series) const;
  void outEvents(PerfJSONWriter& writer, const Head& head) const;
  void outCounters(PerfJSONWriter& writer, const Head& head) const;
  void outCounter(PerfJSONWriter& writer, const Head& head, const std::vector<Counters>& counters,
                  std::size_t index, const std::string& counterName) const;
  std::string counterTreeId(std::size_t index) const;

  int _pid;
  ArrivalList<Fact> _facts;
  ArrivalList<Counters> _counters;
  ChartEvents _events;
};
