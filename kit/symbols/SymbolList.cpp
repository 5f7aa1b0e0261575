#include "symbols/SymbolList.h"

#include <cstring>
#include <stdexcept>

#include "symbols/SymbolListBlock.h"

namespace zelkit {

namespace {

ListEntry entryAt(const std::string& bytes, std::size_t index) {
  ListEntry entry;
  std::memcpy(&entry, bytes.data() + sizeof(ListHeader) + index * sizeof entry, sizeof entry);
  return entry;
}

/// Returns the offset of the texts. The header must have been checked.
std::size_t textStart(std::size_t count) {
  return sizeof(ListHeader) + count * sizeof(ListEntry);
}

/// Returns whether the header matches the size of the block.
bool headerHolds(const std::string& bytes) {
  ListHeader header;
  if (bytes.size() <= sizeof header || bytes.back() != '\0') return false;
  std::memcpy(&header, bytes.data(), sizeof header);
  return header.magic == kListMagic && header.count <= (bytes.size() - sizeof header - 1) / sizeof(ListEntry);
}

/// Returns whether the entries are ascending and disjoint, with their texts inside the block.
bool entriesHold(const std::string& bytes, std::size_t count) {
  const std::size_t textSize = bytes.size() - textStart(count);
  std::uint64_t end = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const ListEntry entry = entryAt(bytes, i);
    if (entry.address < end || entry.size == 0 || entry.name >= textSize || entry.file >= textSize)
      return false;
    end = entry.address + entry.size;
    if (end < entry.address) return false;
  }
  return true;
}

}  // namespace

Symbol SymbolList::operator[](std::size_t index) const {
  const ListEntry entry = entryAt(_bytes, index);
  const char* texts = _bytes.data() + textStart(_count);
  return {.address = entry.address,
          .size = entry.size,
          .name = texts + entry.name,
          .file = texts + entry.file,
          .line = entry.line};
}

std::size_t SymbolList::find(std::uint64_t address) const {
  std::size_t low = 0;
  std::size_t high = _count;
  while (low < high) {
    const std::size_t middle = low + (high - low) / 2;
    const ListEntry entry = entryAt(_bytes, middle);
    if (address < entry.address) {
      high = middle;
    } else if (address - entry.address < entry.size) {
      return middle;
    } else {
      low = middle + 1;
    }
  }
  return _count;
}

SymbolList SymbolList::fromBytes(std::string bytes) {
  if (!headerHolds(bytes)) throw std::runtime_error("not a symbol list");
  ListHeader header;
  std::memcpy(&header, bytes.data(), sizeof header);
  if (!entriesHold(bytes, header.count)) throw std::runtime_error("damaged symbol list");
  SymbolList list;
  list._bytes = std::move(bytes);
  list._count = header.count;
  return list;
}

}  // namespace zelkit
