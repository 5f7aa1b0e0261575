#pragma once

#include <array>
#include <cstddef>
#include <cstring>

/// The two decimal digits of each number below 100.
inline constexpr std::array<char, 200> kDigitPairs = [] {
  std::array<char, 200> pairs{};
  for (unsigned int number = 0; number < 100; ++number) {
    pairs[2 * number] = static_cast<char>('0' + number / 10);
    pairs[2 * number + 1] = static_cast<char>('0' + number % 10);
  }
  return pairs;
}();

/// Puts the last two digits of the number ahead of the place, and takes them off.
template <typename Number>
char* putPair(char* place, Number& number) {
  std::memcpy(place - 2, kDigitPairs.data() + 2 * static_cast<std::size_t>(number % 100), 2);
  number /= 100;
  return place - 2;
}
