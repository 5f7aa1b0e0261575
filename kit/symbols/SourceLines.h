#pragma once

#include <elfutils/libdw.h>

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace zelkit {

/// Source lines of the starts of functions, from the line tables of the debug information.
class SourceLines {
 public:
  struct Place {
    std::string_view file;   ///< empty if unknown; lives as long as the SourceLines
    std::uint32_t line = 0;  ///< counted from 1
  };

  /// `starts`: addresses of the functions' first bytes, ascending.
  explicit SourceLines(std::vector<std::uint64_t> starts);

  /// Reads the line tables of one file. `bias` is added to its addresses. Units that cannot be read are
  /// skipped.
  void read(Dwarf* debugInformation, std::uint64_t bias);

  /// Returns the source line of the function that starts at the address.
  [[nodiscard]] Place at(std::uint64_t start) const;

 private:
  void readUnit(Dwarf_Die& unit, std::uint64_t bias);
  void take(Dwarf_Line* row, std::size_t function);

  std::vector<std::uint64_t> _starts;
  std::vector<Place> _places;
  std::set<std::string, std::less<>> _files;
};

}  // namespace zelkit
