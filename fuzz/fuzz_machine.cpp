// Converts an example with a random file of the machine or of its configuration instead of a true one:
// by the first byte the ftrace text, the list of active counters, the counters' types, the soft interrupts or
// the kernel's symbols.

#include <cstdlib>
#include <iterator>
#include <memory>

#include "Isolated.h"
#include "WholeConversion.h"
#include "support/TraceEvents.h"

namespace {

struct Case {
  const char* file;
  std::vector<std::string> options;
  const char* usual;  ///< what the file holds while another one is random
};

/// Further options by what is left of the first byte: whether lines count at all depends on times and their
/// scale.
const std::vector<std::string> kVariations[] = {
    {},      {"-q"},  {"-b5"},      {"-q", "-c1.5", "-g-3.25"}, {"-s1"}, {"-f2"}, {"-q", "-s1", "-f2"},
    {"-v1"}, {"-v2"}, {"-I", "-l"},
};

const Case kCases[] = {
    {"trace", {"-t", "-q"}, ""},
    {"plotx/activeCounters", {"-t", "-b5"}, "11\n\n04\n13\n17\n18\n\n21\n22\n"},
    {"configx/cfgx-types.json", {"-t", "-b5"}, "{}"},
    {"softirqs", {"-t", "-b5"}, "CPU0\n TIMER: 1\n"},
    {"kallsyms", {"-b5"}, "c0008000 T stext\nc0008100 T schedule\n"},
};

/// Something of each kind that the machine's files say more about.
void makeRecording(const std::string& path) {
  TraceBuilder recording;
  Payload counters;
  for (unsigned int i = 0; i < 9; ++i) counters.u32(7 + i % 2);
  recording.comm(7, 7, "task").mmap(7, 7, 0x10000, 0x1000, "/app/tool");
  for (unsigned int time = 1; time < 4; ++time) {
    recording.at(time, 0, 7).add("perf_trace_counters:sched_switch_with_ctrs", counters);
    recording.value("irq:softirq_entry", time);
  }
  for (const std::uint64_t ip : {0xC0008104ULL, 0x10004ULL, 0xFFFFFFFF81000004ULL, 0xB0000004ULL})
    recording.sample({.ip = ip, .pid = 7, .tid = 7, .time = 9000, .trace = {ip, 0xC0008000}});
  recording.save(path);
}

std::unique_ptr<Conversion> makeFolder() {
  auto folder = std::make_unique<Conversion>();
  for (const char* variable : {"ZELVIEW_CONFIG", "DOCUMENT_ROOT"})
    folder->environment().set(variable, folder->path("."));
  makeRecording(folder->path("perf.data"));
  return folder;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::unique_ptr<Conversion> folder = makeFolder();
  if (size == 0) return 0;
  const Case& chosen = kCases[data[0] % std::size(kCases)];
  const std::size_t rest = data[0] / std::size(kCases);
  std::vector<std::string> options = chosen.options;
  const std::vector<std::string>& variation = kVariations[rest % std::size(kVariations)];
  options.insert(options.end(), variation.begin(), variation.end());
  runIsolated([&] {
    // Developers' builds have no counters of the second level.
    setenv("BUILD_TYPE", rest < std::size(kVariations) ? "release" : "developer", 1);
    for (const Case& each : kCases) folder->write(each.file, each.usual);
    folder->write(chosen.file, textOf(data + 1, size - 1));
    return convertWhole(*folder, options);
  });
  return 0;
}
