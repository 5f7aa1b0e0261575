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
  /// The directory in which programs and libraries are searched for first, such as a copy of the target's
  /// files. Empty: the machine's own root.
  std::string root;
  /// Adds the symbols of the file that a map names, or of kernelSymbols, to its table, ascending by address.
  /// Every name then has its own table. If unset, symbols come from nm for the file on the search path, and
  /// from the text of kernelSymbols.
  std::function<void(const char* name, SymbolTable& table)> addSymbols;
};

extern MachineFiles gMachineFiles;
