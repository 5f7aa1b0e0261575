#pragma once

#include <charconv>
#include <concepts>
#include <cstddef>
#include <cstdint>

/// The most digits that a number has.
inline constexpr std::size_t kMostDigits = 20;

/// Writes the number in decimal, at most kMostDigits, and returns the end of the text.
template <std::unsigned_integral Number>
char* writeDigits(char* text, Number number) {
  // A 32-bit processor divides larger numbers by a long routine.
  if constexpr (sizeof number > sizeof(std::uint32_t))
    if (number <= 0xFFFFFFFF) return writeDigits(text, static_cast<std::uint32_t>(number));
  return std::to_chars(text, text + kMostDigits, number).ptr;
}
