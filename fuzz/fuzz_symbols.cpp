// Reads a random symbol list, by its first byte as the kernel's or as nm's, and looks up addresses in the
// result: a symbol found must cover the address, and a sorted table must find each symbol's start.

#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "symbols/FileNames.h"
#include "symbols/SymbolListReader.h"
#include "symbols/SymbolTable.h"

namespace {

void forgetStatics() {
  for (const auto& [name, file] : FileNames::_fileTable) delete file;
  FileNames::_fileTable.clear();
  SymbolTable::_allSymbolTables.clear();
}

bool isSorted(const SymbolTable& table) {
  for (std::size_t i = 1; i < table.elements().size(); ++i)
    if (table.elements()[i].address() <= table.elements()[i - 1].address()) return false;
  return true;
}

bool answersAreTrue(const SymbolTable& table) {
  const bool mustFind = isSorted(table) && table.elements().size() > 1;
  for (const SymbolTableElement& symbol : table.elements()) {
    if (symbol.address() + symbol.size() < symbol.address()) continue;  // its end wraps, and nothing is in it
    const SymbolTableElement* found = table.findElement(symbol.address());
    if (found == nullptr ? mustFind : symbol.address() < found->address()) return false;
    const SymbolTableElement* first = table.findElementLinear(symbol.address());
    if (first == nullptr && symbol.size() == 0) return false;
  }
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static SymbolTable first;  // stays the one that is known by the default name
  if (size < 2) return 0;
  FileNames::createEmptyRef();
  std::FILE* list = fmemopen(const_cast<std::uint8_t*>(data + 1), size - 1, "r");
  {
    SymbolTable table;
    SymbolListReader(table, list, (data[0] & 1) != 0).read();
    if (!answersAreTrue(table)) std::abort();
  }
  std::fclose(list);
  forgetStatics();
  return 0;
}
