// make_edges FOLDER: makes edges.data, a trace of every kind of trace-point with numbers at and beyond the
// edges of 32 bits, and described.data, whose header names its events and its machine.

#include <cstdio>
#include <string>

#include "support/TraceEvents.h"

namespace {

void makeDescribed(const std::string& path) {
  constexpr unsigned int osRelease = 4;
  constexpr unsigned int architecture = 6;
  RecordingBuilder recording;
  recording.attribute(1, 0, 0x1A7).attribute(0, 0, 0x1E7).attribute(2, 300, 0x4C7);
  recording.textFeature(osRelease, "6.1.0-arm").textFeature(architecture, "aarch64");
  recording.eventNames({"cpu-clock", "cycles", "sched:x"});
  recording.comm(7, 7, "task")
      .mmap(7, 7, 0x10000, 0x1000, "/app/tool")
      .sample({.ip = 0x10004, .pid = 7, .tid = 7});
  recording.save(path);
}

void makeEdges(const std::string& path) {
  TraceBuilder trace;
  const std::string digits[] = {"2147483647",           "2147483648", "-2147483648", "-2147483649",
                                "99999999999999999999", "0x10",       " +7",         "9999999"};
  unsigned int time = 1000;
  for (const char* name : kTraceEvents) {
    Payload fields;
    fields.located("kgsl-3d0");
    for (unsigned int i = 0; i < 14; ++i) fields.u32(i % 2);
    trace.at(time++, 0, 77).add(name, fields);
  }
  for (const std::string& number : digits) {
    trace.at(time++, 0).gpu("kgsl:kgsl_rail", "kgsl-" + number, 1);
    trace.at(time++, 0).gpu("kgsl:kgsl_pwrlevel", "kgsl-3" + number, 0, 4294967295);
    trace.at(time++, 0).gpu("kgsl:kgsl_clk", "1234567" + number, 0x7FFFFFFF);
  }
  for (const std::uint64_t value : {0ULL, 0x7FFFFFFFULL, 0x80000000ULL, 0xFFFFFFFFULL}) {
    trace.at(time++, static_cast<unsigned int>(value)).value("power:cpu_frequency", value, value);
    trace.value("power:cpu_idle", value, value)
        .value("irq:softirq_entry", value)
        .value("irq:irq_handler_exit", value, 0);
    trace.wakeup(static_cast<unsigned int>(value)).schedSwitch(0, 2, static_cast<int>(value));
    trace.comm(static_cast<unsigned int>(value), 77, "edge");
    trace.mmap(77, 77, value << 8, value, "/none");
    trace.sample(
        {.ip = value << 4, .pid = 77, .tid = 77, .time = value << 32, .trace = {value, value << 30, 0x101}});
  }
  trace.save(path);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: make_edges FOLDER\n");
    return 2;
  }
  const std::string folder = argv[1];
  makeEdges(folder + "/edges.data");
  makeDescribed(folder + "/described.data");
  return 0;
}
