#pragma once

#include <cstdint>

/// Two numbers, the first of 64 bits. Three words, so that it takes no more than them.
class NumberPair {
 public:
  NumberPair() = default;
  NumberPair(unsigned long long first, unsigned int second)
      : _firstLow(static_cast<std::uint32_t>(first)),
        _firstHigh(static_cast<std::uint32_t>(first >> 32)),
        _second(second) {}

  unsigned long long first() const { return static_cast<unsigned long long>(_firstHigh) << 32 | _firstLow; }
  unsigned int second() const { return _second; }

 private:
  std::uint32_t _firstLow;
  std::uint32_t _firstHigh;
  std::uint32_t _second;
};
