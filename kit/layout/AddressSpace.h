#pragma once

#include <cstddef>
#include <cstdint>
#include <map>

namespace zelkit {

/// The executable mappings of a process.
class AddressSpace {
 public:
  struct Mapping {
    std::uint64_t start = 0;
    std::uint64_t end = 0;     ///< the first address after it
    std::size_t entered = 0;   ///< number returned by MappedFiles::enter
    std::uint64_t offset = 0;  ///< of `start` in the file
  };

  /// Inserts a mapping and removes what it overlaps.
  void insert(const Mapping& mapping);
  /// Removes a range; mappings that overlap its ends keep the parts outside.
  void cut(std::uint64_t start, std::uint64_t end);
  /// Returns the mapping that contains the address, or null.
  [[nodiscard]] const Mapping* find(std::uint64_t address) const;
  [[nodiscard]] std::size_t size() const { return _mappings.size(); }

 private:
  std::map<std::uint64_t, Mapping> _mappings;  ///< by start; they do not overlap
};

}  // namespace zelkit
