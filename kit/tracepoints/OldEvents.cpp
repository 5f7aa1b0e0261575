#include "tracepoints/OldPayloads.h"

namespace zelkit {

namespace {

constexpr std::size_t kNameSize = 16;  // TASK_COMM_LEN of the kernel

OldField number(std::string_view name, std::size_t offset) {
  return {name, offset, 4, OldField::Kind::number};
}

OldField characters(std::string_view name, std::size_t offset) {
  return {name, offset, kNameSize, OldField::Kind::characters};
}

OldField text(std::string_view name, std::size_t offset) {
  return {name, offset, 4, OldField::Kind::text};
}

OldEvent wakeup(std::string_view name) {
  return {name, 32, {characters("comm", 0), number("pid", 16), number("prio", 20), number("target_cpu", 28)}};
}

OldEvent gpuSwitch(std::string_view name) {
  return {name, 8, {text("device_name", 0), number("on|flag", 4)}};
}

OldEvent gpuStatus(std::string_view name) {
  return {name, 8, {text("device_name", 0), number("status", 4)}};
}

}  // namespace

const std::vector<OldEvent>& oldEvents() {
  static const std::vector<OldEvent> events = {
      {"sched:sched_switch",
       52,
       {characters("prev_comm", 0), number("prev_pid", 16), number("prev_prio", 20), number("prev_state", 24),
        characters("next_comm", 28), number("next_pid", 44), number("next_prio", 48)}},
      wakeup("sched:sched_wakeup"),
      wakeup("sched:sched_wakeup_new"),
      {"perf_trace_counters:sched_switch_with_ctrs",
       36,
       {number("old_pid|prev_pid", 0), number("new_pid|next_pid", 4), number("cctr", 8), number("ctr0", 12),
        number("ctr1", 16), number("ctr2", 20), number("ctr3", 24), number("lctr0", 28),
        number("lctr1", 32)}},
      {"task:task_newtask", 28, {number("pid", 0), characters("comm", 4), number("clone_flags", 20)}},
      // Kernels without the id rename the running task.
      {"task:task_rename",
       40,
       {number("pid|common_pid", 0), characters("oldcomm", 4), characters("newcomm", 20)}},
      {"power:cpu_idle", 8, {number("state", 0), number("cpu_id", 4)}},
      {"power:cpu_frequency", 8, {number("state", 0), number("cpu_id", 4)}},
      {"irq:irq_handler_entry", 8, {number("irq", 0), text("name", 4)}},
      {"irq:irq_handler_exit", 8, {number("irq", 0), number("ret", 4)}},
      {"irq:softirq_entry", 4, {number("vec", 0)}},
      {"irq:softirq_exit", 4, {number("vec", 0)}},
      gpuSwitch("kgsl:kgsl_rail"),
      gpuSwitch("kgsl:kgsl_bus"),
      gpuSwitch("kgsl:kgsl_clk"),
      gpuSwitch("kgsl:kgsl_irq"),
      {"kgsl:kgsl_pwrlevel", 12, {text("device_name", 0), number("pwrlevel", 4), number("freq", 8)}},
      {"kgsl:kgsl_a2xx_irq_status",
       12,
       {text("device_name", 0), number("timestamp", 4), number("status", 8)}},
      gpuStatus("kgsl:kgsl_a3xx_irq_status"),
      gpuStatus("kgsl:kgsl_z180_irq_status"),
      {"kgsl:kgsl_issueibcmds",
       32,
       {text("device_name", 0), number("drawctxt_id", 4), number("ibdesc_addr", 8), number("numibs", 12),
        number("timestamp", 16), number("flags", 20), number("result", 24), number("drawctxt_type", 28)}},
      // Of these two only the common header is used.
      {"kgsl:kgsl_waittimestamp_entry", 0, {}},
      {"kgsl:kgsl_waittimestamp_exit", 0, {}},
  };
  return events;
}

}  // namespace zelkit
