#pragma once

#include <cstddef>
#include <cstdint>

/// A place for the key in a table of 2^bits, such that keys which are close together lie apart.
constexpr std::size_t scattered(std::uint64_t key, unsigned int bits) {
  return static_cast<std::size_t>(key * 0x9E3779B97F4A7C15 >> (64 - bits));
}
