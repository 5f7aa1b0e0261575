/// Symbols of JIT code, from the map that its runtime writes: "perf-PID.map".
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "symbols/SymbolList.h"

namespace zelkit {

/// Returns the functions of a map, at their addresses in the process. One line per function: "START SIZE
/// NAME", with hexadecimal numbers. Of two at one address the later one counts, as the runtime has reused the
/// memory. Other lines are skipped and counted in `badLines`.
SymbolList parseJitMap(std::string_view text, std::size_t& badLines);

/// Returns the path of a process's map, "ROOT/tmp/perf-PID.map", or "" if there is none that can be trusted:
/// a regular file owned by this user or root.
std::string findJitMap(const std::string& root, unsigned int pid);

/// Reads and parses a map. Throws std::runtime_error with "FILE: reason".
SymbolList readJitMap(const std::string& path, std::size_t& badLines);

}  // namespace zelkit
