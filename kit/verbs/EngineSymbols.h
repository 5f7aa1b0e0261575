/// Symbol lists as the engine asks for them.
#pragma once

#include <memory>

#include "layout/MappedFiles.h"
#include "symbols/SymbolList.h"
#include "symbols/SymbolSource.h"

namespace zelkit {

/// Returns the functions of a mapped file, at their distances from the start of its records. Both must
/// outlive the source.
std::unique_ptr<SymbolSource> engineSymbols(const SymbolList& list, const MappedFile& file);

/// Returns the functions of the kernel, which starts at `start` at the latest, so that the engine has its
/// bounds even without symbols.
std::unique_ptr<SymbolSource> engineKernelSymbols(const SymbolList& list, std::uint64_t start);

}  // namespace zelkit
