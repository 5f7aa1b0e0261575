#pragma once

#include <functional>
#include <memory>
#include <string>

class SymbolSource;

/// Paths of the files that the run reads from, or writes to, the machine it runs on.
/// The program always uses the defaults; tests and programs that link the converter point them elsewhere.
struct MachineFiles {
  std::string kernelSymbols = "/proc/kallsyms";
  std::string uptime = "/proc/uptime";
  std::string softInterrupts = "/proc/softirqs";
  std::string traceText = "/sys/kernel/debug/tracing/trace";
  std::string kernelLog = "/dev/kmsg";
  /// The directory in which programs and libraries are searched for first, such as a copy of the target's
  /// files. Empty: the machine's own root.
  std::string root;
  /// Returns the symbols of the file that a map names, or of kernelSymbols; null if there are none. Each name
  /// has a table of its own then. Unset: nm is run on the file in the search path, and the text of
  /// kernelSymbols is read.
  std::function<std::unique_ptr<SymbolSource>(const char* name)> symbolSource;
};

extern MachineFiles gMachineFiles;
