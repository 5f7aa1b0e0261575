/// Provides the symbol list of a file: from the cache, or made from the ELF file and its debug information.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "symbols/ListCache.h"
#include "symbols/SymbolFinder.h"
#include "symbols/SymbolList.h"

namespace zelkit {

/// Symbol lists by file, each read once per run and cached between runs in a folder of at most `cacheLimit`
/// bytes. The key of a list is the build-id and the sizes of the files that it was made from; without a
/// build-id device, inode and time of change; for a text its size and checksums.
class SymbolLists {
 public:
  static constexpr std::uint64_t kCacheLimit = std::uint64_t{512} << 20;

  /// An empty `cacheFolder` means no cache.
  explicit SymbolLists(std::string cacheFolder = defaultCacheFolder(),
                       std::uint64_t cacheLimit = kCacheLimit);
  /// Trims the cache if lists were added.
  ~SymbolLists();
  SymbolLists(const SymbolLists&) = delete;
  SymbolLists& operator=(const SymbolLists&) = delete;

  /// Returns the functions of a found file, see readElfSymbols. The list is empty for a file without symbols.
  /// Throws std::runtime_error with "FILE: reason" if the file cannot be read.
  std::shared_ptr<const SymbolList> listOf(const FoundFile& file);

  /// Returns the list that `make` returns for a text, such as a kernel's table; called once for each text.
  std::shared_ptr<const SymbolList> listOfText(std::string_view text, SymbolList (*make)(std::string_view));

  /// Returns a list of something that changes with time: the one cached under the name at `time` or later,
  /// else the one that `make` returns.
  std::shared_ptr<const SymbolList> listSince(const std::string& name, std::filesystem::file_time_type time,
                                              const std::function<SymbolList()>& make);

  /// Returns "$XDG_CACHE_HOME/zelkit", or "$HOME/.cache/zelkit", or "" if neither is set.
  static std::string defaultCacheFolder();

  /// Return the numbers of lists from the cache, of lists made, and of lists that could not be cached.
  [[nodiscard]] std::size_t cached() const { return _cached; }
  [[nodiscard]] std::size_t made() const { return _made; }
  [[nodiscard]] std::size_t notKept() const { return _notKept; }

 private:
  std::shared_ptr<const SymbolList> obtain(std::optional<SymbolList> cached, const std::string& name,
                                           const std::function<SymbolList()>& make);

  ListCache _cache;
  std::map<std::pair<std::string, std::string>, std::shared_ptr<const SymbolList>> _lists;
  std::size_t _cached = 0;
  std::size_t _made = 0;
  std::size_t _notKept = 0;
};

}  // namespace zelkit
