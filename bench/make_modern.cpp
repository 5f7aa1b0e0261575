// make_modern FILE MEGABYTES: a system-wide recording as perf writes it today, for timing zelkit: four cores
// whose buffers follow one another in each round, fifty processes of thirty mappings, back-traces of twelve
// entries, and now and then a fork and an exec.

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "kit/support/ModernRecording.h"

namespace {

constexpr unsigned int kProcesses = 50;
constexpr unsigned int kMappings = 30;
constexpr unsigned int kStacks = 100;
constexpr unsigned int kCores = 4;
constexpr unsigned int kSamplesOfARound = 500;
constexpr std::uint64_t kMappingSize = 0x100000;
constexpr std::uint64_t kUserMarker = ~0ULL - 511;
constexpr std::uint64_t kDataSizeOffset = 48;

/// Numbers that look random and are the same in every run.
class Numbers {
 public:
  unsigned int below(unsigned int limit) {
    _state = _state * 6364136223846793005ULL + 1442695040888963407ULL;
    return static_cast<unsigned int>(_state >> 33) % limit;
  }

 private:
  std::uint64_t _state = 1;
};

std::uint64_t startOf(unsigned int process, unsigned int mapping) {
  return 0x7F0000000000 + process * 0x100000000ULL + mapping * 2 * kMappingSize;
}

void addProcess(ModernRecording& recording, unsigned int process) {
  const unsigned int pid = 100 + process;
  recording.comm(pid, pid, "process-" + std::to_string(process));
  for (unsigned int i = 0; i < kMappings; ++i)
    recording.mmap(pid, startOf(process, i), kMappingSize, 0,
                   "/usr/lib/library-" + std::to_string(i + process % 7 * 30) + ".so");
}

std::uint64_t address(Numbers& numbers, unsigned int process) {
  return startOf(process, numbers.below(kMappings)) + numbers.below(kMappingSize);
}

/// The back-traces that samples repeat.
std::vector<std::vector<std::uint64_t>> makeStacks(Numbers& numbers) {
  std::vector<std::vector<std::uint64_t>> stacks;
  for (unsigned int process = 0; process < kProcesses; ++process)
    for (unsigned int i = 0; i < kStacks; ++i) {
      std::vector<std::uint64_t> stack = {kUserMarker};
      while (stack.size() < 12) stack.push_back(address(numbers, process));
      stacks.push_back(std::move(stack));
    }
  return stacks;
}

std::string round(Numbers& numbers, const std::vector<std::vector<std::uint64_t>>& stacks,
                  std::uint64_t start) {
  ModernRecording recording;
  recording.event({});
  for (unsigned int core = 0; core < kCores; ++core)
    for (unsigned int i = 0; i < kSamplesOfARound; ++i) {
      const unsigned int stack = numbers.below(kProcesses * kStacks);
      const unsigned int pid = 100 + stack / kStacks;
      ModernRecording::Taken taken{.pid = pid, .tid = pid, .cpu = core, .chain = stacks[stack]};
      taken.ip = taken.chain[1];
      recording.at(start + i * 1000 + core).sample(taken);
    }
  const unsigned int parent = numbers.below(kProcesses);
  recording.fork(100000 + parent, 100 + parent, 100000 + parent, 100 + parent);
  return recording.round().data();
}

bool append(std::FILE* file, const std::string& bytes) {
  return std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 3) {
    std::fprintf(stderr, "usage: make_modern FILE MEGABYTES\n");
    return 2;
  }
  std::FILE* file = std::fopen(arguments[1], "w");
  if (file == nullptr) return std::perror(arguments[1]), 1;
  ModernRecording head;
  head.event({}).textFeature(6, "x86_64").at(0);
  for (unsigned int process = 0; process < kProcesses; ++process) addProcess(head, process);
  // Header and attributes, then the one feature, which comes after the data.
  constexpr std::size_t featureSize = 16 + 68;
  const std::string empty = head.build("");
  std::string feature = empty.substr(empty.size() - featureSize);
  const std::uint64_t wanted = std::strtoull(arguments[2], nullptr, 10) << 20;
  bool ok = append(file, empty.substr(0, empty.size() - featureSize)) && append(file, head.data());
  std::uint64_t size = head.data().size();
  Numbers numbers;
  const std::vector<std::vector<std::uint64_t>> stacks = makeStacks(numbers);
  for (std::uint64_t time = 1'000'000'000; ok && size < wanted; time += kSamplesOfARound * 1000) {
    const std::string bytes = round(numbers, stacks, time);
    ok = append(file, bytes);
    size += bytes.size();
  }
  const std::uint64_t featureAt = empty.size() - featureSize + size + 16;
  std::memcpy(feature.data(), &featureAt, sizeof featureAt);
  ok = ok && append(file, feature) && std::fseek(file, kDataSizeOffset, SEEK_SET) == 0 &&
       std::fwrite(&size, sizeof size, 1, file) == 1;
  if (std::fclose(file) != 0 || !ok) return std::perror(arguments[1]), 1;
  return 0;
}
