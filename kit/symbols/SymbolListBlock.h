/// The parts of the block that SymbolList.h describes.
#pragma once

#include <cstdint>

namespace zelkit {

/// "zelsyms7" as a number, which differs in a block of another byte order. The digit is the version,
/// increased with every change of format or rules.
constexpr std::uint64_t kListMagic = 0x37736d79736c657a;

struct ListHeader {
  std::uint64_t magic;
  std::uint64_t count;
  std::uint32_t textSize;
  std::uint32_t hasFiles;  ///< 1 if an entry has a source file, else 0
};

struct ListEntry {
  std::uint64_t address;
  std::uint32_t size;
  std::uint32_t name;
  std::uint32_t file;
  std::uint32_t line;
};
static_assert(sizeof(ListEntry) == 24);

}  // namespace zelkit
