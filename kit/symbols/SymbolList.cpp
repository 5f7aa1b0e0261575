#include "symbols/SymbolList.h"

#include <sys/mman.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <utility>

#include "symbols/CheckedFile.h"
#include "symbols/SymbolListBlock.h"

namespace zelkit {

namespace {

ListHeader headerOf(std::string_view bytes) {
  ListHeader header{};
  if (bytes.size() >= sizeof header) std::memcpy(&header, bytes.data(), sizeof header);
  return header;
}

/// Returns the texts. The header must have been checked.
std::string_view textsOf(std::string_view bytes) {
  return bytes.substr(sizeof(ListHeader), headerOf(bytes).textSize);
}

ListEntry entryAt(std::string_view bytes, std::size_t count, std::size_t index) {
  ListEntry entry;
  // The entries end the block.
  std::memcpy(&entry, bytes.data() + bytes.size() - (count - index) * sizeof entry, sizeof entry);
  return entry;
}

/// Returns whether the header matches the size of the block.
bool headerHolds(std::string_view bytes) {
  const ListHeader header = headerOf(bytes);
  return header.magic == kListMagic && header.count <= bytes.size() / sizeof(ListEntry) &&
         header.textSize != 0 &&
         sizeof header + header.textSize + header.count * sizeof(ListEntry) == bytes.size() &&
         textsOf(bytes).back() == '\0';
}

/// Returns whether the entries are ascending and disjoint, with their texts inside the block.
bool entriesHold(std::string_view bytes, std::size_t count) {
  const std::size_t textSize = textsOf(bytes).size();
  std::uint64_t end = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const ListEntry entry = entryAt(bytes, count, i);
    if (entry.address < end || entry.size == 0 || entry.name >= textSize || entry.file >= textSize)
      return false;
    end = entry.address + entry.size;
    if (end < entry.address) return false;
  }
  return true;
}

}  // namespace

Symbol SymbolList::operator[](std::size_t index) const {
  const ListEntry entry = entryAt(_bytes, _count, index);
  const std::string_view texts = textsOf(_bytes);
  // A block that was damaged on disk may hold any offset; the last byte of the texts is a NUL.
  const auto textAt = [&](std::uint32_t offset) {
    return offset < texts.size() ? texts.data() + offset : "";
  };
  return {.address = entry.address,
          .size = entry.size,
          .name = textAt(entry.name),
          .file = textAt(entry.file),
          .line = entry.line};
}

std::uint64_t SymbolList::startOf(std::size_t index) const {
  return entryAt(_bytes, _count, index).address;
}

bool SymbolList::isNamed(std::size_t index) const {
  // Offset 0 is the empty text.
  return entryAt(_bytes, _count, index).name != 0;
}

bool SymbolList::hasFiles() const {
  return headerOf(_bytes).hasFiles != 0;
}

std::size_t SymbolList::find(std::uint64_t address) const {
  std::size_t low = 0;
  std::size_t high = _count;
  while (low < high) {
    const std::size_t middle = low + (high - low) / 2;
    const ListEntry entry = entryAt(_bytes, _count, middle);
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

SymbolList SymbolList::ofBlock(std::shared_ptr<const void> owner, std::string_view bytes) {
  if (!headerHolds(bytes)) throw std::runtime_error("not a symbol list");
  SymbolList list;
  list._owner = std::move(owner);
  list._bytes = bytes;
  list._count = headerOf(bytes).count;
  return list;
}

SymbolList SymbolList::fromBytes(std::string bytes) {
  const auto owner = std::make_shared<const std::string>(std::move(bytes));
  SymbolList list = ofBlock(owner, *owner);
  if (!entriesHold(list._bytes, list._count)) throw std::runtime_error("damaged symbol list");
  return list;
}

SymbolList SymbolList::fromFile(const std::string& path) {
  const Descriptor file = openRegular(path);
  struct stat status = {};
  if (fstat(file.number(), &status) != 0) throw std::runtime_error(path + ": " + std::strerror(errno));
  const auto size = static_cast<std::size_t>(status.st_size);
  // Lists are replaced by renaming, never changed, so the mapping keeps its content.
  void* mapped = size != 0 ? mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file.number(), 0) : MAP_FAILED;
  if (mapped == MAP_FAILED) throw std::runtime_error(path + ": cannot be mapped");
  const std::shared_ptr<const char> owner(static_cast<const char*>(mapped), [size](const char* bytes) {
    munmap(const_cast<char*>(bytes), size);
  });
  return ofBlock(owner, {owner.get(), size});
}

}  // namespace zelkit
