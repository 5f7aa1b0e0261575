#pragma once

#include <elfutils/libdw.h>

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zelkit {

/// Source lines of the starts of functions, from the line tables of the debug information.
class SourceLines {
 public:
  struct Place {
    std::string_view file;   ///< empty if unknown; lives as long as the SourceLines
    std::uint32_t line = 0;  ///< counted from 1
  };

  /// `starts`: addresses of the functions' first bytes, in any order.
  explicit SourceLines(std::vector<std::uint64_t> starts) : _starts(std::move(starts)) {}

  /// Reads the line tables of an ELF file. Returns whether it has any. Those that cannot be read are skipped.
  /// Throws std::runtime_error with "FILE: reason" if the file cannot be opened.
  bool read(const std::string& path);

  /// Returns the source line of the function that starts at the address.
  [[nodiscard]] Place at(std::uint64_t start) const;

 private:
  bool readTables(std::string_view tables, std::string_view texts);
  void readUnits(Elf* elf);
  void readUnit(Dwarf_Die& unit);
  Place* wanted(std::uint64_t address);
  [[nodiscard]] std::size_t indexFrom(std::size_t from, std::uint64_t address) const;
  void set(Place& place, std::string file, std::uint32_t line);

  std::vector<std::uint64_t> _starts;
  std::vector<Place> _places;  ///< of the starts; empty until lines are read
  std::size_t _next = 0;       ///< index of the first start not below the address asked for last
  std::set<std::string, std::less<>> _files;
};

}  // namespace zelkit
