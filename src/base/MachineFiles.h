#pragma once

#include <string>

/// Paths of the files that the run reads from, or writes to, the machine it runs on.
/// The program always uses the defaults; tests point them elsewhere.
struct MachineFiles {
  std::string kernelSymbols = "/proc/kallsyms";
  std::string uptime = "/proc/uptime";
  std::string softInterrupts = "/proc/softirqs";
  std::string traceText = "/sys/kernel/debug/tracing/trace";
  std::string kernelLog = "/dev/kmsg";
};

extern MachineFiles gMachineFiles;
