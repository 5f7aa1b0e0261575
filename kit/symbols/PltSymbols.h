#pragma once

#include <libelf.h>

#include <cstdint>

#include "symbols/SymbolListBuilder.h"

namespace zelkit {

/// Adds the stubs through which a file calls other files, as "NAME@plt". They have no symbols: the n-th stub
/// belongs to the n-th relocation of .rela.plt. Only tables in the forms of x86, ARM and AArch64 linkers are
/// read.
void addPltSymbols(Elf* elf, std::uint64_t bias, SymbolListBuilder& builder);

}  // namespace zelkit
