/// The one place to ask for a file's symbol list: from the cache, or made from the ELF file and its debug
/// information.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "symbols/SymbolFinder.h"
#include "symbols/SymbolList.h"

namespace zelkit {

/// Symbol lists by file, each read once a run and kept between runs.
///
/// Lists are cached below `cacheFolder`, by build-id and what else went into them; the folder is made on
/// first use. The cache keeps within `cacheLimit` bytes by removing what was used longest ago. Two runs at
/// once, a full disk or a read-only folder do no harm: a file appears whole or not at all, and a list that
/// cannot be kept is made again.
class SymbolLists {
 public:
  static constexpr std::uint64_t kCacheLimit = std::uint64_t{512} << 20;

  /// An empty `cacheFolder` means no cache.
  explicit SymbolLists(std::string cacheFolder = defaultCacheFolder(),
                       std::uint64_t cacheLimit = kCacheLimit);

  /// Returns the functions of the file: every function symbol of .symtab, local ones too, of .dynsym where
  /// there is no .symtab, with MiniDebugInfo, and with source file and line of each function's first
  /// instruction where there is debug information. Addresses are those of the file's own program headers.
  /// Throws std::runtime_error with "FILE: reason" if the file cannot be read; a file without symbols gives
  /// an empty list.
  std::shared_ptr<const SymbolList> listOf(const FoundFile& file);

  /// Returns "$XDG_CACHE_HOME/zelkit", or "$HOME/.cache/zelkit", or "" if neither is set.
  static std::string defaultCacheFolder();

  /// Lists that came out of the cache, and lists that had to be made.
  [[nodiscard]] std::size_t cached() const { return _cached; }
  [[nodiscard]] std::size_t made() const { return _made; }

 private:
  std::string _cacheFolder;
  std::uint64_t _cacheLimit;
  std::map<std::pair<std::string, std::string>, std::shared_ptr<const SymbolList>> _lists;
  std::size_t _cached = 0;
  std::size_t _made = 0;
};

}  // namespace zelkit
