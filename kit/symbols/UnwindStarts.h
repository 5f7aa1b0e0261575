#pragma once

#include <libelf.h>

#include <cstdint>
#include <vector>

namespace zelkit {

/// Returns the starts of functions from the tables for unwinding, which stripping does not remove: the search
/// table of .eh_frame_hdr (Linux Standard Base, "DWARF Extensions") and .ARM.exidx (Exception Handling ABI
/// for the Arm Architecture). Little-endian files only; a table that cannot be read adds none.
std::vector<std::uint64_t> unwindStarts(Elf* elf);

}  // namespace zelkit
