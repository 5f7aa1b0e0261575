#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "symbols/SymbolList.h"

namespace zelkit {

/// Makes a list of symbols that come in any order, overlap and repeat.
class SymbolListBuilder {
 public:
  static constexpr std::uint64_t kNoLimit = ~std::uint64_t{0};

  /// Adds a function; the texts are copied, and a symbol without a name is passed over. Size 0 means unknown:
  /// the function reaches to the next one or to `limit`, the end of its section. No function reaches beyond
  /// `limit`, nor is longer than 64 MiB. Of several symbols at one address the one of the highest rank is
  /// kept, of equal ranks the one added last.
  void add(const Symbol& symbol, std::uint64_t limit = kNoLimit, std::uint64_t rank = 0);

  /// Says that [from, to) is code. What no function covers of it is listed without a name, but for padding.
  void addCode(std::uint64_t from, std::uint64_t to);

  /// Says that a function begins at the address, of whatever name. Unnamed code is cut there.
  void addStart(std::uint64_t address) { _starts.push_back(address); }

  /// Returns the list and leaves the builder empty. Where symbols overlap, the one that begins later has the
  /// addresses and the earlier one goes on after it; one of unknown size inside another is dropped. A
  /// function longer than 1 MiB is cut into pieces of one name, since a table takes a greater size for a gap.
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
  class Pieces;
  class Gaps;

  void keepBestOfEachAddress();
  std::uint32_t store(std::string_view text);

  std::vector<Entry> _entries;
  std::string _texts = std::string(1, '\0');  ///< offset 0 is the empty text
  std::map<std::string, std::uint32_t, std::less<>> _files;
  std::vector<Range> _code;
  std::vector<std::uint64_t> _starts;
};

}  // namespace zelkit
