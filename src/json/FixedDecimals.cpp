#include "json/FixedDecimals.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "json/Digits.h"

namespace {

constexpr int kMantissaBits = 52;
constexpr int kExponentOfOne = 1023;
/// Bits of a fraction. Its halves are multiplied apart, as few processors have products of 128 bits.
constexpr int kFractionBits = 60;
constexpr int kHalfBits = kFractionBits / 2;
constexpr std::uint64_t kLowHalf = (std::uint64_t{1} << kHalfBits) - 1;

/// A value of at least 2^-8 and less than 2^53 as whole number and fraction.
struct Parts {
  explicit Parts(double value) {
    const auto bits = std::bit_cast<std::uint64_t>(value);
    constexpr std::uint64_t leadingBit = std::uint64_t{1} << kMantissaBits;
    const std::uint64_t mantissa = (bits & (leadingBit - 1)) | leadingBit;
    const int fractionBits = kMantissaBits + kExponentOfOne - static_cast<int>(bits >> kMantissaBits & 0x7FF);
    good = fractionBits >= 0 && fractionBits <= kFractionBits;
    if (!good) return;
    whole = mantissa >> fractionBits;
    fraction = mantissa << (kFractionBits - fractionBits) & ((std::uint64_t{1} << kFractionBits) - 1);
  }

  /// Returns the fraction in units of 1 / unitsInOne (at most 2^30), rounded to nearest, ties to even. A
  /// carry goes to the whole number.
  std::uint32_t takeUnits(std::uint64_t unitsInOne) {
    const std::uint64_t low = (fraction & kLowHalf) * unitsInOne;
    const std::uint64_t high = (fraction >> kHalfBits) * unitsInOne + (low >> kHalfBits);
    const std::uint64_t rest = (high & kLowHalf) << kHalfBits | (low & kLowHalf);
    std::uint64_t units = high >> kHalfBits;
    // No branch, as half of the numbers are rounded up. Only an odd number rounds a tie up.
    constexpr std::uint64_t lessThanHalf = (std::uint64_t{1} << (kFractionBits - 1)) - 1;
    units += (rest + lessThanHalf + units % 2) >> kFractionBits;
    if (units != unitsInOne) return static_cast<std::uint32_t>(units);
    ++whole;
    return 0;
  }

  bool good = false;
  std::uint64_t whole = 0;
  std::uint64_t fraction = 0;
};

/// The three decimal digits of each number below 1000, padded to four bytes.
constexpr std::array<char, 4000> kDigitTriples = [] {
  std::array<char, 4000> triples{};
  for (std::size_t number = 0; number < 1000; ++number) {
    triples[4 * number] = static_cast<char>('0' + number / 100);
    triples[4 * number + 1] = static_cast<char>('0' + number / 10 % 10);
    triples[4 * number + 2] = static_cast<char>('0' + number % 10);
  }
  return triples;
}();

/// Writes the three digits and returns their end. The fourth byte is scratch; `text` needs room for four.
char* writeTriple(char* text, std::uint32_t number) {
  std::memcpy(text, kDigitTriples.data() + std::size_t{4} * number, 4);
  return text + 3;
}

/// Writes the number with leading zeros, and scratch after it.
template <int Digits>
char* writePadded(char* text, std::uint32_t number) {
  static_assert(Digits % 3 == 0);
  if constexpr (Digits > 3) text = writePadded<Digits - 3>(text, number / 1000);
  return writeTriple(text, number % 1000);
}

constexpr std::uint64_t powerOfTen(int exponent) {
  return exponent == 0 ? 1 : 10 * powerOfTen(exponent - 1);
}

}  // namespace

// A document holds a time for every sample, and printf takes ten times as long.
template <int Decimals>
char* writeFixed(char* text, double value) {
  Parts parts(value);
  if (!parts.good) return text + std::snprintf(text, kFixedRoom, "%.*f", Decimals, value);
  const std::uint32_t decimals = parts.takeUnits(powerOfTen(Decimals));
  if (std::signbit(value)) *text++ = '-';
  text = writeDigits(text, parts.whole);
  *text++ = '.';
  return writePadded<Decimals>(text, decimals);
}

template char* writeFixed<kPointDecimals>(char*, double);
template char* writeFixed<kDocumentDecimals>(char*, double);
