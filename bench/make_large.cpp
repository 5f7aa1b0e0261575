// Makes large recordings for the benchmarks, and the libraries that they mention: make_large FOLDER RECORDS
//
// FOLDER/profile.data: RECORDS samples with back-traces of 0 to 15 entries in 60 processes, which map 300
// pieces of 40 libraries. A process is sampled at 1,000 places and calls from 200, some far more often than
// others: in recordings of real machines with a few thousand samples seven in ten addresses have come before.
// A tenth of all addresses are in no map.
//
// FOLDER/trace.data: RECORDS trace-points of all kinds on 16 CPUs, among 300 tasks that sleep and wake. As in
// perf's own recordings, the buffers of the CPUs take turns in the file, so time jumps back at each turn.
//
// FOLDER/lib<n>.s: the libraries, 500 functions each, to be assembled to FOLDER/lib<n>.so.
//
// The numbers are the same on every machine.

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "LargeTrace.h"
#include "PerfFile.h"

namespace {

constexpr unsigned int kProcesses = 60;
constexpr unsigned int kMapsEach = 5;
constexpr unsigned int kLibraries = 40;
constexpr unsigned int kFunctions = 500;  // of one library
constexpr unsigned int kFunctionSize = 128;
constexpr std::uint64_t kFirstMap = 0x40000000;
constexpr std::uint64_t kMapSpacing = 0x100000;
constexpr std::uint64_t kUnmapped = 0x90000000;
constexpr unsigned int kUnmappedPages = 12;  // that a process jumps into
constexpr unsigned int kCallSites = 200;     // of a process
constexpr unsigned int kSampledPlaces = 1000;

constexpr unsigned int kCpus = 16;
constexpr unsigned int kTasks = 300;
constexpr unsigned int kBufferRecords = 64;  // what one CPU's buffer holds when its turn comes

class Numbers {
 public:
  unsigned int below(unsigned int bound) { return static_cast<unsigned int>(_engine()) % bound; }
  /// Small numbers far more often than large ones.
  unsigned int skewedBelow(unsigned int bound) {
    const std::uint64_t share = std::uint64_t{below(1024)} * below(1024) * below(1024);
    return static_cast<unsigned int>(share * bound >> 30);
  }

 private:
  std::mt19937 _engine{1};
};

void makeLibrary(const std::string& folder, unsigned int number) {
  std::ofstream file(folder + "/lib" + std::to_string(number) + ".s");
  file << ".text\n";
  for (unsigned int function = 0; function < kFunctions; ++function) {
    const std::string name = "library" + std::to_string(number) + "_function" + std::to_string(function);
    file << ".globl " << name << "\n.type " << name << ", @function\n"
         << name << ": .skip " << kFunctionSize << "\n";
  }
}

class ProfileMaker {
 public:
  explicit ProfileMaker(std::string folder) : _folder(std::move(folder)) {}

  std::string records(unsigned int samples) {
    for (unsigned int n = 0; n < kProcesses; ++n) {
      _records.comm(kFirstPid + n, kFirstPid + n, "process" + std::to_string(n));
      for (unsigned int map = 0; map < kMapsEach; ++map)
        _records.mmap(kFirstPid + n, kFirstPid + n, kFirstMap + map * kMapSpacing, kMapSpacing - 0x10000,
                      _folder + "/lib" + std::to_string((n * kMapsEach + map) % kLibraries) + ".so");
    }
    for (unsigned int i = 0; i < samples; ++i) sample(i);
    return _records.data();
  }

 private:
  static constexpr unsigned int kFirstPid = 100;
  static constexpr unsigned int kFirstFunction = 0x10000;  // where the text of the libraries is linked to

  /// An address in the code that a process runs.
  std::uint64_t place(unsigned int process) {
    if (_numbers.below(10) == 0)
      return kUnmapped + std::uint64_t{process % 8 * 64 + _numbers.skewedBelow(kUnmappedPages)} * 0x10000 +
             _numbers.below(256) * 4;
    return kFirstMap + _numbers.below(kMapsEach) * kMapSpacing + kFirstFunction +
           _numbers.skewedBelow(kFunctions) * kFunctionSize + _numbers.below(kFunctionSize / 4) * 4;
  }

  using Places = std::array<std::vector<std::uint64_t>, kProcesses>;

  /// One of `count` addresses of a process, which are made on first use.
  std::uint64_t oneOf(Places& places, unsigned int count, unsigned int process) {
    while (places[process].size() < count) places[process].push_back(place(process));
    return places[process][_numbers.skewedBelow(count)];
  }

  void sample(unsigned int number) {
    const unsigned int process = _numbers.skewedBelow(kProcesses);
    PlainSample sample;
    sample.pid = sample.tid = kFirstPid + process;
    sample.ip = oneOf(_sampled, kSampledPlaces, process);
    sample.time = 1000000000 + number * 25123ULL;
    sample.cpu = number % kCpus;
    for (unsigned int depth = _numbers.below(16); depth > 0; --depth)
      sample.trace.push_back(oneOf(_callers, kCallSites, process));
    _records.sample(sample);
  }

  Places _sampled;
  Places _callers;
  std::string _folder;
  Numbers _numbers;
  RecordingBuilder _records;
};

/// One field of a trace-point's layout, in the words of the kernel's format files.
std::string field(const char* type, const char* name, unsigned int offset, unsigned int size) {
  return std::string("\tfield:") + type + " " + name + ";\toffset:" + std::to_string(offset) +
         ";\tsize:" + std::to_string(size) + ";\tsigned:0;\n";
}

std::vector<PerfFile::TracePoint> tracePoints() {
  const std::string one = field("u32", "state", 8, 4);
  const std::string two = one + field("u32", "cpu_id", 12, 4);
  return {
      {kSwitch, "sched", "sched_switch",
       field("char", "prev_comm[16]", 8, 16) + field("pid_t", "prev_pid", 24, 4) +
           field("int", "prev_prio", 28, 4) + field("int", "prev_state", 32, 4) +
           field("char", "next_comm[16]", 36, 16) + field("pid_t", "next_pid", 52, 4) +
           field("int", "next_prio", 56, 4)},
      {kWakeup, "sched", "sched_wakeup",
       field("char", "comm[16]", 8, 16) + field("pid_t", "pid", 24, 4) + field("int", "prio", 28, 4) +
           field("int", "success", 32, 4) + field("int", "target_cpu", 36, 4)},
      {kIdle, "power", "cpu_idle", two},
      {kFrequency, "power", "cpu_frequency", two},
      {kIrqEntry, "irq", "irq_handler_entry",
       field("int", "irq", 8, 4) + field("__data_loc char[]", "name", 12, 4)},
      {kIrqExit, "irq", "irq_handler_exit", field("int", "irq", 8, 4) + field("int", "ret", 12, 4)},
      {kSoftEntry, "irq", "softirq_entry", field("unsigned int", "vec", 8, 4)},
      {kSoftExit, "irq", "softirq_exit", field("unsigned int", "vec", 8, 4)},
      {kGpuClock, "kgsl", "kgsl_clk",
       field("__data_loc char[]", "device_name", 8, 4) + field("unsigned int", "on", 12, 4)},
  };
}

class TraceMaker {
 public:
  std::string records(unsigned int count) {
    _records.kernel(310);
    while (_count < count) turn(count);
    return _records.data();
  }

 private:
  struct Pending {
    TracePoint point;
    Payload payload;
  };

  /// Lets the machine run for a while and writes each CPU's buffer in turn.
  void turn(unsigned int count) {
    std::array<std::vector<Pending>, kCpus> buffers;
    for (unsigned int i = 0; i < kBufferRecords * kCpus && _count < count; ++i, ++_count) {
      const unsigned int cpu = _numbers.below(kCpus);
      _time += 300 + _numbers.below(4000);
      buffers[cpu].push_back(step(cpu));
    }
    for (const std::vector<Pending>& buffer : buffers)
      for (const Pending& pending : buffer) _records.tracePoint(pending.point, pending.payload);
  }

  Pending step(unsigned int cpu) {
    const unsigned int kind = _numbers.below(100);
    if (kind < 45) return at(cpu, kSwitch, switchTask(cpu));
    if (kind < 65) return at(cpu, kWakeup, Payload().text("task", 16).u32(task()).u32(120).u32(1).u32(cpu));
    if (kind < 79) return interrupt(cpu);
    if (kind < 91) return softInterrupt(cpu);
    if (kind < 98)
      return at(cpu, kIdle, Payload().u32(_numbers.below(3) == 0 ? 0xFFFFFFFF : _numbers.below(2)).u32(cpu));
    if (kind < 99) return at(cpu, kFrequency, Payload().u32(300000 + _numbers.below(16) * 100000).u32(cpu));
    return at(cpu, kGpuClock, Payload().located("kgsl-3d0").u32(_numbers.below(2)));
  }

  unsigned int task() { return 1000 + _numbers.skewedBelow(kTasks); }

  Payload switchTask(unsigned int cpu) {
    const unsigned int previous = _running[cpu];
    _running[cpu] = _numbers.below(4) == 0 ? 0 : task();
    return Payload()
        .text("previous", 16)
        .u32(previous)
        .u32(120)
        .u32(_numbers.below(3))
        .text("next", 16)
        .u32(_running[cpu])
        .u32(120);
  }

  Pending interrupt(unsigned int cpu) {
    _inInterrupt[cpu] = !_inInterrupt[cpu];
    const unsigned int number = 30 + cpu;
    return _inInterrupt[cpu] ? at(cpu, kIrqEntry, Payload().u32(number).located("timer"))
                             : at(cpu, kIrqExit, Payload().u32(number).u32(1));
  }

  Pending softInterrupt(unsigned int cpu) {
    _inSoftInterrupt[cpu] = !_inSoftInterrupt[cpu];
    return at(cpu, _inSoftInterrupt[cpu] ? kSoftEntry : kSoftExit, Payload().u32(cpu % 10));
  }

  Pending at(unsigned int cpu, Event event, const Payload& payload) {
    TracePoint point;
    point.event = event;
    point.stream = event;
    point.time = _time;
    point.cpu = cpu;
    point.pid = _running[cpu];
    return {point, payload};
  }

  Numbers _numbers;
  unsigned int _count = 0;
  std::uint64_t _time = 1000000000;
  std::array<unsigned int, kCpus> _running{};
  std::array<bool, kCpus> _inInterrupt{};
  std::array<bool, kCpus> _inSoftInterrupt{};
  RecordingBuilder _records;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: make_large FOLDER RECORDS\n");
    return 2;
  }
  const std::string folder = argv[1];
  const auto records = static_cast<unsigned int>(std::strtoul(argv[2], nullptr, 10));
  for (unsigned int number = 0; number < kLibraries; ++number) makeLibrary(folder, number);
  PerfFile::ofSamples().save(folder + "/profile.data", ProfileMaker(folder).records(records));
  PerfFile::ofTracePoints(tracePoints()).save(folder + "/trace.data", TraceMaker().records(records));
  return 0;
}
