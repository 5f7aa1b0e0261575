// Makes a recording of the whole system's kind, for the benchmark that waits for the real nm: make_mapped
// FILE <LIST
//
// Each line of the list is a library, which twenty processes map; samples hit one after the other, as they do
// when a system wakes up. perf reads the recording too.

#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

#include "PerfFile.h"

namespace {

constexpr unsigned int kFirstPid = 1000;
constexpr unsigned int kProcesses = 20;
constexpr unsigned int kSamplesEach = 50;  // of a library
constexpr std::uint64_t kFirstMap = 0x40000000;
constexpr std::uint64_t kMapSpacing = 0x200000;

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: make_mapped FILE <LIST\n");
    return 2;
  }
  std::vector<std::string> libraries;
  for (std::string line; std::getline(std::cin, line);) libraries.push_back(line);

  RecordingBuilder records;
  for (unsigned int pid = kFirstPid; pid < kFirstPid + kProcesses; ++pid) {
    records.comm(pid, pid, "process" + std::to_string(pid));
    for (std::size_t i = pid % 2; i < libraries.size(); ++i)
      records.mmap(pid, pid, kFirstMap + i * kMapSpacing, kMapSpacing, libraries[i]);
  }
  std::uint64_t time = 0;
  for (unsigned int n = 0; n < kSamplesEach; ++n)
    for (std::size_t i = 1; i < libraries.size(); ++i) {
      const unsigned int pid = kFirstPid + (n % kProcesses);
      const std::uint64_t address = kFirstMap + i * kMapSpacing + 0x1000 * (n % 16);
      time += 1000000;
      records.sample({address, pid, pid, time, n % 4, {address, address + 0x2000}});
    }
  PerfFile::ofSamples().save(argv[1], records.data());
  return 0;
}
