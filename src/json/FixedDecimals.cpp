#include "json/FixedDecimals.h"

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>

namespace {

constexpr int kMantissaBits = 52;
constexpr int kExponentOfOne = 1023;
/// As many bits as a fraction may have for its tenfold to fit 64.
constexpr int kMostFractionBits = 60;

/// A value of at least 2^-8 and less than 2^53 as whole number and fraction.
struct Parts {
  explicit Parts(double value) {
    const auto bits = std::bit_cast<std::uint64_t>(value);
    constexpr std::uint64_t leadingBit = std::uint64_t{1} << kMantissaBits;
    const std::uint64_t mantissa = (bits & (leadingBit - 1)) | leadingBit;
    fractionBits = kMantissaBits + kExponentOfOne - static_cast<int>(bits >> kMantissaBits & 0x7FF);
    good = fractionBits >= 0 && fractionBits <= kMostFractionBits;
    if (!good) return;
    whole = mantissa >> fractionBits;
    fraction = mantissa & mask();
  }

  std::uint64_t mask() const { return (std::uint64_t{1} << fractionBits) - 1; }

  /// Takes the next decimal off the fraction.
  std::uint64_t nextDecimal() {
    fraction *= 10;
    const std::uint64_t digit = fraction >> fractionBits;
    fraction &= mask();
    return digit;
  }

  /// Whether the rest of the fraction rounds a number up that ends in that digit.
  bool roundsUp(std::uint64_t lastDigit) const {
    if (fractionBits == 0) return false;
    const std::uint64_t half = std::uint64_t{1} << (fractionBits - 1);
    return fraction > half || (fraction == half && lastDigit % 2 != 0);
  }

  bool good = false;
  int fractionBits = 0;
  std::uint64_t whole = 0;
  std::uint64_t fraction = 0;
};

}  // namespace

// A document holds a time for every sample, and printf takes ten times as long.
char* writeFixed(char* text, double value, int decimals) {
  Parts parts(value);
  if (!parts.good) return text + std::snprintf(text, kFixedRoom, "%.*f", decimals, value);
  std::uint64_t rest = 0;
  std::uint64_t limit = 1;
  for (int i = 0; i < decimals; ++i) {
    rest = rest * 10 + parts.nextDecimal();
    limit *= 10;
  }
  if (parts.roundsUp(rest)) ++rest;
  if (rest == limit) {
    rest = 0;
    ++parts.whole;
  }

  if (std::signbit(value)) *text++ = '-';
  text = std::to_chars(text, text + kFixedRoom, parts.whole).ptr;
  *text++ = '.';
  char* const end = text + decimals;
  for (char* place = end; place != text; rest /= 10) *--place = static_cast<char>('0' + rest % 10);
  return end;
}
