#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "symbols/SymbolList.h"

namespace zelkit {

/// Builds a list of symbols, which may be added in any order, overlap and repeat.
class SymbolListBuilder {
 public:
  SymbolListBuilder();

  static constexpr std::uint64_t kNoLimit = ~std::uint64_t{0};

  /// Adds a function; the texts are copied, and a symbol without a name is ignored. Size 0 means unknown: the
  /// function extends to the next one or to `limit`, the end of its section. No function extends beyond
  /// `limit` or is longer than 64 MiB. Of several symbols at one address the one with the highest rank is
  /// kept, of equal ranks the one added last.
  void add(const Symbol& symbol, std::uint64_t limit = kNoLimit, std::uint64_t rank = 0);

  /// Prepares for a number of functions and the bytes of their names, of which 64 MiB at most. Starts should
  /// be added before.
  void reserve(std::size_t functions, std::size_t text);

  /// Declares [from, to) as code. The parts without a function are listed without a name, except padding.
  void addCode(std::uint64_t from, std::uint64_t to);

  /// Declares that a function starts at the address. Unnamed code is cut there.
  void addStart(std::uint64_t address) { _starts.push_back(address); }

  /// Returns the list and leaves the builder empty. Where symbols overlap, the one that starts later has the
  /// addresses and the earlier one continues after it; one of unknown size inside another is dropped. A
  /// function longer than 1 MiB is cut into pieces with the same name, since a table regards a larger size as
  /// a gap.
  [[nodiscard]] SymbolList build();

 private:
  struct Entry {
    std::uint64_t address;
    std::uint64_t end;  ///< equal to address while unknown
    std::uint64_t limit;
    std::uint64_t rank;
    std::uint32_t name;  ///< offsets in _texts
    std::uint32_t file;
    std::uint32_t line;
  };
  struct Range {
    std::uint64_t from;
    std::uint64_t to;
  };
  class Entries;
  class Pieces;

  void keepBestOfEachAddress();
  std::uint32_t store(std::string_view text);

  std::vector<Entry> _entries;
  std::string _block;  ///< the list's: room for its header, and the texts
  std::map<std::string, std::uint32_t, std::less<>> _files;
  std::vector<Range> _code;
  std::vector<std::uint64_t> _starts;
};

}  // namespace zelkit
