#pragma once

#include <libelf.h>

#include <cstdint>

#include "symbols/SymbolListBuilder.h"

namespace zelkit {

/// Adds the stubs through which a file calls other files, as "NAME@plt". No symbol names them: the n-th stub
/// belongs to the n-th relocation of .rela.plt. A table of another form than the linkers of x86, ARM and
/// AArch64 write is passed over.
void addPltSymbols(Elf* elf, std::uint64_t bias, SymbolListBuilder& builder);

}  // namespace zelkit
