#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "recording/Bytes.h"

namespace zelkit {

/// A table of the section .debug_line, in little-endian DWARF 5 (section 6.2 of its standard). libdw keeps
/// all rows of a table and sorts them, which takes many times longer than running through them.
class LineTable {
 public:
  struct Row {
    std::uint64_t address = 0;
    std::uint64_t file = 1;  ///< see fileName
    std::uint32_t line = 1;  ///< 0 if unknown
  };

  /// Takes the next table. `texts`: the section .debug_line_str. Returns nothing for a table of another
  /// version or with names in other sections, and for a damaged one.
  static std::optional<LineTable> next(Bytes& tables, std::string_view texts);

  /// Calls `take(row)` for each row that covers code, in the order of the table; of several at an address for
  /// the first with a line. Damage ends the rows.
  template <typename Take>
  void forEachRow(Take take) const;

  /// Returns the path of a row's file, which may be relative to a folder of the build; empty if there is no
  /// such file.
  [[nodiscard]] std::string fileName(std::uint64_t file) const;

 private:
  struct Name {
    std::string_view text;
    std::uint64_t folder = 0;  ///< of a file, index in _folders
  };

  enum class Effect { kNone, kRow, kEnd };

  static std::uint64_t unsignedNumber(Bytes& bytes);
  static std::int64_t signedNumber(Bytes& bytes);
  static std::vector<Name> readNames(Bytes& header, std::string_view texts);
  Effect run(Bytes& code, Row& row) const;
  static Effect runExtended(Bytes& code, Row& row);

  Bytes _code;
  std::uint8_t _step = 1;  ///< of addresses
  std::int8_t _lineBase = 0;
  std::uint8_t _lineRange = 1;
  std::uint8_t _firstSpecial = 1;
  std::array<std::uint8_t, 256> _operands{};  ///< number of operands by operation
  std::vector<Name> _folders;
  std::vector<Name> _files;
};

template <typename Take>
void LineTable::forEachRow(Take take) const {
  Bytes code = _code;
  Row row;
  Row last;  // not yet given, as the sequence may end before it covers any code
  bool hasLast = false;
  while (code.left() != 0) {
    const Effect effect = run(code, row);
    if (effect == Effect::kNone) continue;
    const bool isSameAddress = hasLast && last.address == row.address;
    if (hasLast && !isSameAddress) take(last);
    if (effect == Effect::kRow && (!isSameAddress || last.line == 0)) last = row;
    if (effect == Effect::kEnd) row = {};
    hasLast = effect == Effect::kRow;
  }
}

}  // namespace zelkit
