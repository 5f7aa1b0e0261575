/// The functions of one file, as sorted ranges that do not overlap.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace zelkit {

/// One function, a part of one that another function interrupts, or code without a name.
struct Symbol {
  std::uint64_t address = 0;
  std::uint64_t size = 0;      ///< bytes: the function is [address, address + size); 1 MiB at most in a list
  std::string_view name;       ///< demangled; empty for code that no symbol names
  std::string_view file = {};  ///< source file, empty if unknown
  std::uint32_t line = 0;      ///< line in `file`, 0 if unknown

  bool operator==(const Symbol&) const = default;
};

/// An immutable list of symbols, ascending and disjoint: at most one symbol covers an address, and an address
/// in a gap has none. No symbol has size 0. SymbolListBuilder makes lists.
///
/// A list is one block of bytes, which is also what the cache keeps on disk, in this machine's byte order:
///
///     block  = magic (u64) count (u64) entry{count} text
///     entry  = address (u64) size (u32) name (u32) file (u32) line (u32)
///     text   = bytes, the last one NUL
///
/// `name` and `file` are offsets into `text`, where each of them ends with a NUL.
///
/// The converter's SymbolTable counts the byte past an element's end as the element's own. Whoever fills a
/// table from a list adds each symbol with `size - 1`, and every address then gets its own name and no other.
class SymbolList {
 public:
  /// An empty list.
  SymbolList() = default;

  [[nodiscard]] std::size_t size() const { return _count; }
  [[nodiscard]] bool empty() const { return _count == 0; }
  /// Returns a symbol whose texts live as long as the list.
  [[nodiscard]] Symbol operator[](std::size_t index) const;

  /// Returns the index of the symbol that covers the address, or size() if none does.
  [[nodiscard]] std::size_t find(std::uint64_t address) const;

  /// The block; empty for a list made by the default constructor.
  [[nodiscard]] const std::string& bytes() const { return _bytes; }
  /// Takes a block. Throws std::runtime_error for bytes that are none, or whose list is not as promised
  /// above.
  static SymbolList fromBytes(std::string bytes);

 private:
  friend class SymbolListBuilder;

  std::string _bytes;
  std::size_t _count = 0;
};

}  // namespace zelkit
