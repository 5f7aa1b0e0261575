#pragma once

#include <cstddef>
#include <cstdint>

/// Returns a slot for the key in a cache of 2^bits slots; keys that are close together get slots far apart.
/// Only for caches, where keys that collide by design cost a miss each: tables need KeyHash.
constexpr std::size_t fibonacciHash(std::uint64_t key, unsigned int bits) {
  return static_cast<std::size_t>(key * 0x9E3779B97F4A7C15 >> (64 - bits));
}
