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
    std::size_t entered = 0;   ///< number in MappedFiles
    std::uint64_t offset = 0;  ///< of `start` in the file
  };

  /// Puts a mapping in the place of whatever lies there.
  void insert(const Mapping& mapping);
  /// Takes a range out; mappings that reach over its ends keep what lies outside.
  void cut(std::uint64_t start, std::uint64_t end);
  /// Returns the mapping that holds the address, or null.
  [[nodiscard]] const Mapping* find(std::uint64_t address) const;
  [[nodiscard]] std::size_t size() const { return _mappings.size(); }

 private:
  std::map<std::uint64_t, Mapping> _mappings;  ///< by start; they do not overlap
};

}  // namespace zelkit
