/// The functions of one file, as sorted ranges that do not overlap.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace zelkit {

/// One function, a part of one that another function interrupts, or code without a name.
struct Symbol {
  std::uint64_t address = 0;
  std::uint64_t size = 0;      ///< in bytes: the range is [address, address + size); 1 MiB at most in a list
  std::string_view name;       ///< see readableName; empty for code that no symbol names
  std::string_view file = {};  ///< source file, empty if unknown
  std::uint32_t line = 0;      ///< line in `file`, 0 if unknown

  bool operator==(const Symbol&) const = default;
};

/// An immutable list of symbols, ascending and disjoint: at most one symbol covers an address, and none an
/// address in a gap. No symbol has size 0. Lists are built by SymbolListBuilder.
///
/// A list is one block of bytes in this machine's byte order, which is also its format in the cache:
///
///     block  = magic (u64) count (u64) size of text (u32) has files (u32) text entry{count}
///     text   = bytes, the last one NUL
///     entry  = address (u64) size (u32) name (u32) file (u32) line (u32)
///
/// `name` and `file` are offsets of NUL-terminated texts in `text`.
///
/// The converter's SymbolTable includes the byte after an element in the element, so symbols must be given to
/// it with `size - 1`.
class SymbolList {
 public:
  /// An empty list.
  SymbolList() = default;

  [[nodiscard]] std::size_t size() const { return _count; }
  [[nodiscard]] bool empty() const { return _count == 0; }
  /// Returns a symbol, whose texts are valid as long as the list.
  [[nodiscard]] Symbol operator[](std::size_t index) const;

  /// Return parts of a symbol at less cost.
  [[nodiscard]] std::uint64_t startOf(std::size_t index) const;
  [[nodiscard]] bool isNamed(std::size_t index) const;

  /// Returns the index of the symbol that covers the address, or size() if none does.
  [[nodiscard]] std::size_t find(std::uint64_t address) const;

  /// Returns the block; empty for a list made by the default constructor.
  [[nodiscard]] std::string_view bytes() const { return _bytes; }
  /// Returns whether some symbol has a source file.
  [[nodiscard]] bool hasFiles() const;

  /// Makes a list of a block. Throws std::runtime_error if it is not a valid block of such a list.
  static SymbolList fromBytes(std::string bytes);
  /// Maps a file that holds a block, of which only the used parts are then read. Throws std::runtime_error if
  /// it cannot be read or is cut off. The order of its symbols is not checked, but no text reaches outside.
  static SymbolList fromFile(const std::string& path);

 private:
  friend class SymbolListBuilder;

  static SymbolList ofBlock(std::shared_ptr<const void> owner, std::string_view bytes);

  std::shared_ptr<const void> _owner;  ///< of the bytes
  std::string_view _bytes;
  std::size_t _count = 0;
};

}  // namespace zelkit
