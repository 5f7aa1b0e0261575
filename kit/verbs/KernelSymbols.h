#pragma once

#include <cstdint>
#include <string_view>

#include "recording/RecordingInfo.h"
#include "symbols/SymbolList.h"

namespace zelkit {

/// Returns the functions of a kernel by the text of its /proc/kallsyms, those of modules too, in order. A
/// function ends where the next symbol of any kind begins.
SymbolList readKernelTable(std::string_view text);

/// Returns the functions that a recording carries for a file.
SymbolList listOf(const RecordedFile& file);

/// Returns the lowest address that may be the kernel's. `lowestMapping`: of the records that tell where the
/// kernel lies, ~0 if there are none.
std::uint64_t kernelStartOf(const RecordingInfo& info, std::uint64_t lowestMapping);

}  // namespace zelkit
