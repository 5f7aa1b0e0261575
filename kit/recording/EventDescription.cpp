#include "recording/EventDescription.h"

#include <array>

#include "recording/Bytes.h"

namespace zelkit {

namespace {

constexpr std::uint64_t kSampleIdAll = 1 << 18;

/// Names of hardware and software events by config, as perf calls them.
constexpr std::array kHardware = {
    "cycles",        "instructions", "cache-references",        "cache-misses",           "branches",
    "branch-misses", "bus-cycles",   "stalled-cycles-frontend", "stalled-cycles-backend", "ref-cycles"};
constexpr std::array kSoftwareNames = {"cpu-clock",        "task-clock",   "page-faults",  "context-switches",
                                       "cpu-migrations",   "minor-faults", "major-faults", "alignment-faults",
                                       "emulation-faults", "dummy",        "bpf-output",   "cgroup-switches"};

}  // namespace

EventDescription EventDescription::of(std::string_view attribute) {
  EventDescription event;
  event.type = numberAt<std::uint32_t>(attribute, 0);
  event.config = numberAt<std::uint64_t>(attribute, 8);
  event.sampleType = numberAt<std::uint64_t>(attribute, 24);
  event.readFormat = numberAt<std::uint64_t>(attribute, 32);
  event.sampleIdAll = (numberAt<std::uint64_t>(attribute, 40) & kSampleIdAll) != 0;
  event.branchSampleType = numberAt<std::uint64_t>(attribute, 72);
  event.userRegisters = numberAt<std::uint64_t>(attribute, 80);
  return event;
}

std::string EventDescription::label() const {
  if (!name.empty()) return name;
  if (type == 0 && config < kHardware.size()) return kHardware[config];
  if (type == kSoftware && config < kSoftwareNames.size()) return kSoftwareNames[config];
  return "type " + std::to_string(type) + " config " + std::to_string(config);
}

}  // namespace zelkit
