#pragma once

#include <string>

#include "symbols/SymbolList.h"

namespace zelkit {

/// Returns the functions of an ELF file, at the addresses of its own program headers: those of .symtab, else
/// of .dynsym, both in the file itself or in `debugPath`, its separate debug file ("" if there is none), and
/// those of MiniDebugInfo. Labels of assembler code count as functions; mapping symbols of the ARM, AArch64
/// and RISC-V ABIs ($a, $t, $d, $x) do not. The Thumb bit is cleared. Of aliases the strong, global one with
/// the fewest leading underscores is kept, then the longest. Stubs that call other files are named
/// "NAME@plt". Code without a symbol is listed without a name, cut where the unwind tables have the start of
/// a function. Throws std::runtime_error with "FILE: reason" if the file cannot be read.
SymbolList readElfSymbols(const std::string& path, const std::string& debugPath);

}  // namespace zelkit
