#pragma once

#include <cstddef>
#include <cstdint>

/// Returns a slot for the key in a cache of 2^bits slots; neighbouring keys get distant slots. Only for
/// caches, where keys chosen to collide cost one miss each; tables need KeyHash.
constexpr std::size_t fibonacciHash(std::uint64_t key, unsigned int bits) {
  return static_cast<std::size_t>(key * 0x9E3779B97F4A7C15 >> (64 - bits));
}
