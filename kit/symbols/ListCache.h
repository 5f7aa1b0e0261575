#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "symbols/SymbolList.h"

namespace zelkit {

/// Symbol lists on disk, one file each. Several runs may use one folder at the same time: lists appear
/// complete or not at all, and one that cannot be read or written counts as missing.
class ListCache {
 public:
  /// `limit` is in bytes. The folder is created with the first list, for this user only. With an empty name
  /// nothing is cached.
  ListCache(std::string folder, std::uint64_t limit) : _folder(std::move(folder)), _limit(limit) {}

  /// Returns the list stored under the name, and marks it as used.
  [[nodiscard]] std::optional<SymbolList> load(const std::string& name) const;

  /// Returns the list stored under the name at that time or later. It does not count as used, as its time is
  /// that of its content.
  [[nodiscard]] std::optional<SymbolList> loadStoredSince(const std::string& name,
                                                          std::filesystem::file_time_type time) const;

  /// Stores a list. Returns whether that succeeded; otherwise the folder is unchanged.
  bool store(const std::string& name, const SymbolList& list) const;

  /// Removes the least recently used lists until the rest is within the limit, and files of aborted runs.
  void trim() const;

 private:
  [[nodiscard]] std::string pathOf(const std::string& name) const {
    return _folder + '/' + name + ".symbols";
  }

  std::string _folder;
  std::uint64_t _limit;
};

}  // namespace zelkit
