#pragma once

#include <cstddef>
#include <cstdint>
#include <random>

namespace zelkit {

/// Hash for numbers from a recording, with a random seed per run, so that nobody can choose colliding ones.
struct SeededHash {
  std::size_t operator()(std::uint64_t key) const {
    static const std::uint64_t seed = std::random_device{}() | std::uint64_t{std::random_device{}()} << 32;
    key = (key ^ seed) * 0x9E3779B97F4A7C15;
    key = (key ^ key >> 32) * 0xD6E8FEB86659FD93;
    return static_cast<std::size_t>(key ^ key >> 32);
  }
};

}  // namespace zelkit
