/// Code that a program made while it ran, by the map that its runtime left: "perf-PID.map".
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "symbols/SymbolList.h"

namespace zelkit {

/// Returns the functions of a map, at their addresses in the process. One line a function, "START SIZE NAME"
/// with hexadecimal numbers; of two at one address the later one holds, as the runtime used the place again.
/// Lines of another form are passed over and added to `badLines`.
SymbolList parseJitMap(std::string_view text, std::size_t& badLines);

/// Returns the path of the map of a process below the root, "ROOT/tmp/perf-PID.map", or "" if there is none
/// that can be trusted: a regular file of this user or of root.
std::string findJitMap(const std::string& root, unsigned int pid);

/// Reads and parses such a file. Throws std::runtime_error with "FILE: reason".
SymbolList readJitMap(const std::string& path, std::size_t& badLines);

}  // namespace zelkit
