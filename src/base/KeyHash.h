#pragma once

#include <cstddef>
#include <cstdint>

/// Hash for tables whose keys come from a recording. It mixes a key with two random numbers that differ
/// between runs, so that nobody can prepare a recording whose keys collide. No output may depend on the order
/// of such a table.
class KeyHash {
 public:
  KeyHash();

  std::size_t operator()(std::uint64_t key) const noexcept {
    std::uint64_t hash = key + _outer;
    hash = (hash ^ hash >> 32) * 0xFF51AFD7ED558CCD;
    // Without _inner the two multiplications could be inverted.
    hash = (hash ^ hash >> 29 ^ _inner) * 0xC4CEB9FE1A85EC53;
    return static_cast<std::size_t>(hash ^ hash >> 32);
  }

 private:
  std::uint64_t _outer = 0;
  std::uint64_t _inner = 0;
};
