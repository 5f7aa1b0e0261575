#pragma once

#include <array>
#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
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

/// The three decimal digits of each number below 1000, and a byte that makes it four.
inline constexpr std::array<char, 4000> kDigitTriples = [] {
  std::array<char, 4000> triples{};
  for (unsigned int number = 0; number < 1000; ++number) {
    triples[4 * number] = static_cast<char>('0' + number / 100);
    triples[4 * number + 1] = static_cast<char>('0' + number / 10 % 10);
    triples[4 * number + 2] = static_cast<char>('0' + number % 10);
  }
  return triples;
}();

/// Writes the three digits, and a byte behind them that does not count. Answers the end of the digits.
inline char* writeTriple(char* text, std::uint32_t number) {
  std::memcpy(text, kDigitTriples.data() + 4 * static_cast<std::size_t>(number), 4);
  return text + 3;
}

/// The most digits that a number has.
inline constexpr std::size_t kMostDigits = 20;

/// The least number that has one digit more than the index; 0 has one, too.
inline constexpr std::array<std::uint64_t, kMostDigits> kLeastNumbers = [] {
  std::array<std::uint64_t, kMostDigits> least{};
  std::uint64_t power = 1;
  for (std::size_t digits = 1; digits < kMostDigits; ++digits) least[digits] = power *= 10;
  return least;
}();

/// How many decimal digits the number has.
constexpr std::size_t digitCount(std::uint64_t number) {
  // A bit is worth log10(2) digits, about 1233 / 4096; that may be one too many or none.
  const auto count = static_cast<std::size_t>(std::bit_width(number)) * 1233 / 4096;
  return number < kLeastNumbers[count] ? count : count + 1;
}

/// Writes the number in decimal, at most kMostDigits, and answers the end of the text.
template <std::unsigned_integral Number>
char* writeDigits(char* text, Number number) {
  // A 32-bit processor divides larger numbers by a long routine.
  if constexpr (sizeof number > sizeof(std::uint32_t))
    if (number <= 0xFFFFFFFF) return writeDigits(text, static_cast<std::uint32_t>(number));
  if (number < 10) {
    *text = static_cast<char>('0' + number);
    return text + 1;
  }
  char* const end = text + digitCount(number);
  char* place = end;
  while (number >= 100) place = putPair(place, number);
  if (number >= 10) {
    putPair(place, number);
  } else {
    place[-1] = static_cast<char>('0' + number);
  }
  return end;
}
