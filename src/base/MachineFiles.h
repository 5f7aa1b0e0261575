#pragma once

#include <cstdio>
#include <functional>
#include <string>

/// Paths of the files that the run reads from, or writes to, the machine it runs on.
/// The program always uses the defaults; tests and programs that link the converter point them elsewhere.
struct MachineFiles {
  std::string kernelSymbols = "/proc/kallsyms";
  std::string uptime = "/proc/uptime";
  std::string softInterrupts = "/proc/softirqs";
  std::string traceText = "/sys/kernel/debug/tracing/trace";
  std::string kernelLog = "/dev/kmsg";
  /// The folder below which programs and libraries are looked for first, such as a copy of the target's
  /// files. Empty: the machine's own root.
  std::string root;
  /// Opens the symbol list of the file that a map names, in ascending order of address; null if there is
  /// none. Every name then has a table of its own. Unset: the list that nm prints for the file on the search
  /// path.
  std::function<std::FILE*(const char* name)> openSymbolList;
};

extern MachineFiles gMachineFiles;
