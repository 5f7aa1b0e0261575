// Makes the example recording: make_recording FILE EXECUTABLE LIBRARY
//
// Two processes, one of them with two threads, run code of the executable, which is mapped below 0x40000000,
// of the library above it, of the kernel, and of addresses that no map covers. Back-traces have every depth
// from 0 to 20. The addresses of functions come from nm, so that the conversion finds the same functions
// again.

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "support/RecordingBuilder.h"

namespace {

constexpr std::uint64_t kLibraryStart = 0x40080000;
constexpr std::uint64_t kMapLength = 0x20000;
constexpr std::uint64_t kExecutableStart = 0x10000;
constexpr std::uint64_t kKernelAddress = 0xC0012340;
constexpr std::uint64_t kHeapAddress = 0x2A004560;  // between the maps: code made at run time, say
constexpr int kSamples = 600;
/// Samples are inside of functions, the smallest of which has five bytes: one on a first byte counts for the
/// function before.
constexpr std::uint64_t kInside = 1;

/// The address of a function by the start of its name as nm shows it.
std::uint64_t addressOf(const std::string& function, const std::string& file) {
  std::FILE* list = popen(("nm -C '" + file + "'").c_str(), "r");
  if (list == nullptr) return 0;
  std::uint64_t address = 0;
  std::array<char, 512> line{};
  while (std::fgets(line.data(), static_cast<int>(line.size()), list) != nullptr) {
    const char* name = std::strchr(line.data(), 'T');
    if (name != nullptr && std::strncmp(name + 2, function.c_str(), function.size()) == 0)
      address = std::strtoull(line.data(), nullptr, 16);
  }
  pclose(list);
  return address;
}

/// Random numbers, the same on every machine.
class Dice {
 public:
  unsigned int roll(unsigned int sides) {
    _state = _state * 1664525 + 1013904223;
    return (_state >> 16) % sides;
  }

 private:
  std::uint32_t _state = 1;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fprintf(stderr, "usage: make_recording FILE EXECUTABLE LIBRARY\n");
    return 2;
  }
  const std::string executable = argv[2];
  const std::string library = argv[3];

  // Hot ones are listed several times.
  std::vector<std::uint64_t> code;
  for (const char* function :
       {"pick_apple", "pick_apple", "pick_apple", "pick_pear", "pick_pear", "walk_rows", "main"})
    code.push_back(addressOf(function, executable));
  for (const char* function :
       {"meadow::count_bees", "meadow::count_bees", "meadow::mow", "meadow::measure_shade"})
    code.push_back(kLibraryStart + addressOf(function, library));
  code.push_back(kKernelAddress);
  code.push_back(kHeapAddress);

  RecordingBuilder recording;
  recording.comm(100, 100, "orchard").comm(100, 101, "picker").comm(200, 200, "gardener");
  for (const unsigned int pid : {100U, 200U}) {
    recording.mmap(pid, pid, kExecutableStart, kMapLength, "/usr/bin/orchard");
    recording.mmap(pid, pid, kLibraryStart, kMapLength, "/usr/lib/libmeadow.so");
  }

  Dice dice;
  for (unsigned int i = 0; i < kSamples; ++i) {
    const unsigned int pid = i % 3 == 2 ? 200 : 100;
    PlainSample sample;
    sample.ip = code[dice.roll(static_cast<unsigned int>(code.size()))] + kInside + dice.roll(4);
    sample.pid = pid;
    sample.tid = pid + i % 3 % 2;
    sample.time = 5000000000 + i * 1000000ULL;
    sample.cpu = i % 2;
    for (unsigned int depth = 0; depth < i % 21; ++depth)
      sample.trace.push_back(depth == 0 ? sample.ip
                                        : code[dice.roll(static_cast<unsigned int>(code.size()))] + kInside);
    recording.sample(sample);
  }
  recording.save(argv[1]);
  return 0;
}
