/// The functions of one file, as sorted ranges that do not overlap.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zelkit {

/// One function, or a part of one that another function interrupts.
struct Symbol {
  std::uint64_t address = 0;
  std::uint64_t size = 0;      ///< bytes, never 0: the function is [address, address + size)
  std::string_view name;       ///< demangled, never empty
  std::string_view file = {};  ///< source file, empty if unknown
  std::uint32_t line = 0;      ///< line in `file`, 0 if unknown
};

/// An immutable list of symbols, ascending and disjoint: at most one symbol covers an address, and an address
/// in a gap has none. It is one block of bytes, which is also what the cache keeps on disk.
///
/// The converter's SymbolTable counts the byte past an element's end as the element's own. Whoever fills a
/// table from a list adds each symbol with `size - 1`, and every address then gets its own name and no other:
///
///     for (std::size_t i = 0; i < list.size(); ++i)
///       table.addElement(list[i].address, list[i].size - 1, list[i].name, ...);
class SymbolList {
 public:
  SymbolList() = default;

  [[nodiscard]] std::size_t size() const { return _count; }
  [[nodiscard]] bool empty() const { return _count == 0; }
  /// Returns a symbol whose texts live as long as the list.
  [[nodiscard]] Symbol operator[](std::size_t index) const;

  /// Returns the index of the symbol that covers the address, or size() if none does.
  [[nodiscard]] std::size_t find(std::uint64_t address) const;

  /// The block. `fromBytes` throws std::runtime_error for bytes that are no such block.
  [[nodiscard]] const std::string& bytes() const { return _bytes; }
  static SymbolList fromBytes(std::string bytes);

  /// Returns the part of the list within [from, to) with addresses counted from `from`, each symbol cut to
  /// it.
  [[nodiscard]] SymbolList within(std::uint64_t from, std::uint64_t to) const;

 private:
  std::string _bytes;
  std::size_t _count = 0;
};

/// Makes a list of symbols that come in any order, overlap and repeat.
class SymbolListBuilder {
 public:
  /// Adds a function. Size 0 means unknown: it reaches to the next symbol or to `limit`, the end of its
  /// section. `rank`: of several symbols at one address the one of the highest rank is kept. The texts are
  /// copied.
  void add(const Symbol& symbol, std::uint64_t limit, int rank = 0);

  /// Returns the list and leaves the builder empty. Where symbols overlap, the one that begins later covers
  /// what it covers and the earlier one goes on after it.
  [[nodiscard]] SymbolList build();

  [[nodiscard]] std::size_t size() const { return _entries.size(); }

 private:
  struct Entry {
    std::uint64_t address;
    std::uint64_t end;  ///< equal to address while unknown
    std::uint64_t limit;
    std::size_t name;  ///< offsets in _texts, where each text ends with a NUL
    std::size_t file;
    std::uint32_t line;
    int rank;
  };

  std::vector<Entry> _entries;
  std::string _texts;
};

}  // namespace zelkit
