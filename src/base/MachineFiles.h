#pragma once

#include <functional>
#include <string>

class SymbolTable;

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
  /// Adds the symbols of the file that a map names, or of kernelSymbols, to its table, ascending by address.
  /// Every name then has a table of its own. Unset: what nm prints for the file on the search path, and the
  /// text of kernelSymbols.
  std::function<void(const char* name, SymbolTable& table)> addSymbols;
};

extern MachineFiles gMachineFiles;
