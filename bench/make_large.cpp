// Makes large inputs for timing whole conversions: make_large PROFILE TRACE
//
// PROFILE: 20 processes of 30 libraries each, 500,000 samples with back-traces of 0 to 11 entries, 50 MB.
// TRACE: 1,000,000 context switches among 200 tasks on 4 CPUs, 120 MB.

#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "support/TraceEvents.h"

namespace {

constexpr unsigned int kProcesses = 20;
constexpr unsigned int kLibraries = 30;
constexpr std::uint64_t kFirstLibrary = 0x40000000;
constexpr std::uint64_t kLibrarySpacing = 0x100000;
constexpr unsigned int kSamples = 500000;
constexpr unsigned int kSwitches = 1000000;
constexpr unsigned int kTasks = 200;

/// The same numbers on every machine: the generator's own output is fixed, a distribution's is not.
class Numbers {
 public:
  unsigned int below(unsigned int bound) { return static_cast<unsigned int>(_engine()) % bound; }

 private:
  std::mt19937 _engine{1};
};

void makeProfile(const char* file) {
  RecordingBuilder recording;
  for (unsigned int pid = 100; pid < 100 + kProcesses; ++pid) {
    recording.comm(pid, pid, "process" + std::to_string(pid));
    for (unsigned int n = 0; n < kLibraries; ++n)
      recording.mmap(pid, pid, kFirstLibrary + n * kLibrarySpacing, kLibrarySpacing - 0x10000,
                     "/lib/lib" + std::to_string(n) + ".so");
  }
  Numbers numbers;
  const auto address = [&] {
    return kFirstLibrary + numbers.below(kLibraries * static_cast<unsigned int>(kLibrarySpacing));
  };
  for (unsigned int i = 0; i < kSamples; ++i) {
    PlainSample sample;
    sample.pid = sample.tid = 100 + numbers.below(kProcesses);
    sample.ip = address();
    sample.time = 1000000000 + i * 1000ULL;
    sample.cpu = i % 4;
    for (unsigned int depth = numbers.below(12); depth > 0; --depth) sample.trace.push_back(address());
    recording.sample(sample);
  }
  recording.save(file);
}

void makeTrace(const char* file) {
  TraceBuilder trace;
  Numbers numbers;
  for (unsigned int i = 0; i < kSwitches; ++i)
    trace.at(1000000 + i, i % 4)
        .schedSwitch(static_cast<int>(numbers.below(kTasks)), numbers.below(3), static_cast<int>(numbers.below(kTasks)));
  trace.save(file);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: make_large PROFILE TRACE\n");
    return 2;
  }
  makeProfile(argv[1]);
  makeTrace(argv[2]);
  return 0;
}
