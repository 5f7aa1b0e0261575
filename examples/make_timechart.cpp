// Makes the example trace: make_timechart FILE
//
// Two CPUs of a 3.4 kernel run two threads of a game and a daemon for a second: context switches, wake-ups,
// hardware counters, interrupts, idle states, frequency changes, and a GPU that is switched on, draws, and is
// switched off. The names of the counters are in examples/config and examples/www.

#include <cstdio>

#include "support/TraceEvents.h"

namespace {

constexpr unsigned int kGame = 300;
constexpr unsigned int kRender = 301;
constexpr unsigned int kDaemon = 400;
constexpr unsigned int kTimer = 29;
constexpr unsigned int kFrameTime = 16667;  // microseconds
constexpr unsigned int kFrames = 60;
constexpr unsigned int kBlocked = 2;
constexpr unsigned int kAwake = 1;

/// Changes to the process and reports the counters of the one that leaves.
void switchTo(TraceBuilder& trace, unsigned int from, unsigned int state, unsigned int to,
              unsigned int cycles) {
  trace.schedSwitch(static_cast<int>(from), state, static_cast<int>(to));
  Payload counters;
  counters.u32(from).u32(to).u32(cycles).u32(cycles / 20).u32(cycles / 50).u32(0).u32(0).u32(0).u32(0);
  trace.add("perf_trace_counters:sched_switch_with_ctrs", counters);
}

/// Four milliseconds of the game on CPU 0, then three of its render thread on CPU 1, which gives work to the
/// GPU.
void frame(TraceBuilder& trace, unsigned int start, unsigned int number) {
  trace.at(start, 0).value("power:cpu_idle", 0xFFFFFFFF);
  trace.at(start, 0).add("irq:irq_handler_entry", Payload().u32(kTimer).located("timer"));
  trace.at(start + 20, 0).value("irq:softirq_entry", 1).at(start + 45, 0).value("irq:softirq_exit", 1);
  trace.at(start + 50, 0).value("irq:irq_handler_exit", kTimer, 1).at(start + 60, 0).wakeup(kGame);
  trace.at(start + 90, 0);
  switchTo(trace, 0, kAwake, kGame, 1000);
  trace.at(start + 4000, 0, kGame).wakeup(kRender);
  trace.at(start + 4050, 1).value("power:cpu_idle", 0xFFFFFFFF);
  trace.at(start + 4060, 1);
  switchTo(trace, 0, kAwake, kRender, 800);
  trace.at(start + 4100, 0);
  switchTo(trace, kGame, kAwake, 0, 4000000 + number * 10000);
  trace.at(start + 4110, 0).value("power:cpu_idle", 1);
  trace.at(start + 7000, 1, kRender)
      .add("kgsl:kgsl_issueibcmds",
           Payload().located("kgsl-3d0").u32(0).u32(0).u32(0).u32(0).u32(0x100).u32(0).u32(1));
  trace.add("kgsl:kgsl_waittimestamp_entry", Payload().u32(0).u32(number));
  trace.at(start + 7100, 1);
  switchTo(trace, kRender, kBlocked, 0, 3000000);
  trace.at(start + 7110, 1).value("power:cpu_idle", 0);
  trace.at(start + 9000, 1).gpu("kgsl:kgsl_a3xx_irq_status", "kgsl-3d0", 0x80000000);
  trace.at(start + 9050, 1, kRender).add("kgsl:kgsl_waittimestamp_exit", Payload().u32(0).u32(0));
}

void powerGpu(TraceBuilder& trace, unsigned int time, unsigned int flag) {
  const char* const upward[] = {"kgsl:kgsl_rail", "kgsl:kgsl_bus", "kgsl:kgsl_clk", "kgsl:kgsl_irq"};
  for (unsigned int i = 0; i < 4; ++i)
    trace.at(time + 10 * i, 0).gpu(upward[flag != 0 ? i : 3 - i], "kgsl-3d0", flag);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: make_timechart FILE\n");
    return 2;
  }
  TraceBuilder trace;
  trace.comm(kGame, kGame, "game").comm(kGame, kRender, "render").comm(kDaemon, kDaemon, "daemon");
  unsigned int time = 2000000;
  powerGpu(trace, time, 1);
  for (unsigned int number = 0; number < kFrames; ++number, time += kFrameTime) {
    if (number % 20 == 0) {
      const unsigned int step = number / 20;
      trace.at(time + 5, 1).value("power:cpu_frequency", 384000 + step * 400000, 0);
      trace.gpu("kgsl:kgsl_pwrlevel", "kgsl-3d0", step, 200000000 + step * 100000000);
    }
    frame(trace, time + 100, number);
    if (number % 10 == 9) {
      trace.at(time + 12000, 1).wakeup(kDaemon);
      switchTo(trace, 0, kAwake, kDaemon, 500);
      trace.at(time + 14000, 1);
      switchTo(trace, kDaemon, kAwake, 0, 1500000);
    }
  }
  powerGpu(trace, time, 0);
  trace.save(argv[1]);
  return 0;
}
