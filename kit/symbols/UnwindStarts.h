#pragma once

#include <libelf.h>

#include <cstdint>
#include <vector>

namespace zelkit {

/// Returns where functions begin by the tables that unwinding needs, which no stripping takes away: the
/// search table of .eh_frame_hdr (Linux Standard Base, "DWARF Extensions") and .ARM.exidx (Exception Handling
/// ABI for the Arm Architecture). Little-endian files only; a table that cannot be read gives nothing.
std::vector<std::uint64_t> unwindStarts(Elf* elf);

}  // namespace zelkit
