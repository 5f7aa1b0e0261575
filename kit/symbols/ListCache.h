#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "symbols/SymbolList.h"

namespace zelkit {

/// Symbol lists on disk, one file each. Several runs may use one folder at once: a list appears whole or not
/// at all, and one that cannot be read or written is as good as none.
class ListCache {
 public:
  /// The folder is made when the first list is kept, for this user alone. With an empty name nothing is kept.
  ListCache(std::string folder, std::uint64_t limit) : _folder(std::move(folder)), _limit(limit) {}

  /// Returns the list that was kept under the name, and marks it as used.
  [[nodiscard]] std::optional<SymbolList> load(const std::string& name) const;

  /// Keeps a list. Returns whether that worked; if not, the folder is as before.
  bool store(const std::string& name, const SymbolList& list) const;

  /// Removes the lists used longest ago until the rest is within the limit, and what broken-off runs left.
  void trim() const;

 private:
  [[nodiscard]] std::string pathOf(const std::string& name) const {
    return _folder + '/' + name + ".symbols";
  }

  std::string _folder;
  std::uint64_t _limit;
};

}  // namespace zelkit
