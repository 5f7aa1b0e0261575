#pragma once

#include <cstdint>

#include "support/RecordingBuilder.h"

/// Payloads of trace-points, and a recording whose event table names them all.

inline constexpr const char* kTraceEvents[] = {"sched:sched_switch",
                                               "sched:sched_wakeup",
                                               "sched:sched_wakeup_new",
                                               "task:task_newtask",
                                               "task:task_rename",
                                               "perf_trace_counters:sched_switch_with_ctrs",
                                               "power:cpu_idle",
                                               "power:cpu_frequency",
                                               "irq:irq_handler_entry",
                                               "irq:irq_handler_exit",
                                               "irq:softirq_entry",
                                               "irq:softirq_exit",
                                               "kgsl:kgsl_a2xx_irq_status",
                                               "kgsl:kgsl_a3xx_irq_status",
                                               "kgsl:kgsl_z180_irq_status",
                                               "kgsl:kgsl_irq",
                                               "kgsl:kgsl_bus",
                                               "kgsl:kgsl_rail",
                                               "kgsl:kgsl_clk",
                                               "kgsl:kgsl_pwrlevel",
                                               "kgsl:kgsl_issueibcmds",
                                               "kgsl:kgsl_waittimestamp_entry",
                                               "kgsl:kgsl_waittimestamp_exit"};

/// Adds trace-points by name, at a time in microseconds.
class TraceBuilder : public RecordingBuilder {
 public:
  TraceBuilder() {
    unsigned int number = kFirstNumber;
    for (const char* name : kTraceEvents) event(number++, name);
  }

  TraceBuilder& at(std::uint64_t microseconds, unsigned int cpu, unsigned int pid = 0) {
    _point.time = microseconds * 1000;
    _point.cpu = cpu;
    _point.pid = pid;
    return *this;
  }

  TraceBuilder& add(const std::string& name, const Payload& payload) {
    _point.event = kFirstNumber;
    for (const char* known : kTraceEvents) {
      if (known == name) break;
      ++_point.event;
    }
    tracePoint(_point, payload);
    return *this;
  }

  TraceBuilder& schedSwitch(int from, unsigned int state, int to) {
    return add("sched:sched_switch", Payload()
                                         .text("from", 16)
                                         .u32(static_cast<unsigned int>(from))
                                         .u32(120)
                                         .u32(state)
                                         .text("to", 16)
                                         .u32(static_cast<unsigned int>(to))
                                         .u32(120));
  }

  TraceBuilder& wakeup(unsigned int pid) {
    return add("sched:sched_wakeup", Payload().text("woken", 16).u32(pid).u32(120).u32(1).u32(0));
  }

  TraceBuilder& value(const std::string& name, std::uint64_t first, std::uint64_t second = 0) {
    return add(name, Payload().u32(first).u32(second));
  }

  TraceBuilder& gpu(const std::string& name, const std::string& device, std::uint64_t first,
                    std::uint64_t second = 0) {
    return add(name, Payload().located(device).u32(first).u32(second));
  }

 private:
  static constexpr unsigned int kFirstNumber = 20;

  TracePoint _point;
};
