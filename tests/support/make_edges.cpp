// Makes a trace with numbers at and beyond the edges of 32 bits: make_edges FILE

#include <cstdio>
#include <string>

#include "support/TraceEvents.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: make_edges FILE\n");
    return 2;
  }
  TraceBuilder trace;
  const std::string digits[] = {"2147483647",           "2147483648", "-2147483648", "-2147483649",
                                "99999999999999999999", "0x10",       " +7",         "9999999"};
  unsigned int time = 1000;
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
  trace.save(argv[1]);
  return 0;
}
