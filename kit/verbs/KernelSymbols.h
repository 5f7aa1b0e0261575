#pragma once

#include <cstdint>
#include <string_view>

#include "recording/RecordingInfo.h"
#include "symbols/SymbolList.h"

namespace zelkit {

/// Returns the functions in the text of /proc/kallsyms, including those of modules. A function ends where the
/// next symbol of any kind starts.
SymbolList readKernelTable(std::string_view text);

/// Returns the functions of a file that the recording contains.
SymbolList listOf(const RecordedFile& file);

/// Returns the lowest possible address of the kernel. `lowestMapping`: the lowest start of the kernel's
/// mappings, ~0 if there are none.
std::uint64_t kernelStartOf(const RecordingInfo& info, std::uint64_t lowestMapping);

}  // namespace zelkit
