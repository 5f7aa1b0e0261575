#include "json/FixedDecimals.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>

#include "json/Digits.h"

namespace {

constexpr int kMantissaBits = 52;
constexpr int kExponentOfOne = 1023;
/// As many bits as a fraction may have for its tenfold, or its thousandfold, to fit 64.
constexpr int kMostFractionBits = 60;
constexpr int kMostBitsForThousands = 54;

constexpr std::uint64_t powerOfTen(int exponent) {
  return exponent == 0 ? 1 : 10 * powerOfTen(exponent - 1);
}

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

  /// Takes so many decimals off the fraction as the power of ten has zeros, in steps of a lower power.
  template <std::uint64_t Power, std::uint64_t Step>
  std::uint64_t take() {
    std::uint64_t taken = 0;
    for (std::uint64_t power = 1; power < Power; power *= Step) {
      fraction *= Step;
      taken = taken * Step + (fraction >> fractionBits);
      fraction &= mask();
    }
    return taken;
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
template <int Decimals>
char* writeFixed(char* text, double value) {
  constexpr std::uint64_t power = powerOfTen(Decimals);
  Parts parts(value);
  if (!parts.good) return text + std::snprintf(text, kFixedRoom, "%.*f", Decimals, value);
  std::uint64_t rest =
      parts.fractionBits <= kMostBitsForThousands ? parts.take<power, 1000>() : parts.take<power, 10>();
  if (parts.roundsUp(rest)) ++rest;
  if (rest == power) {
    rest = 0;
    ++parts.whole;
  }

  if (std::signbit(value)) *text++ = '-';
  text = writeDigits(text, parts.whole);
  *text++ = '.';
  auto decimals = static_cast<std::uint32_t>(rest);
  char* place = text + Decimals;
  while (place - text >= 2) place = putPair(place, decimals);
  if (place != text) *text = static_cast<char>('0' + decimals);
  return text + Decimals;
}

template char* writeFixed<kPointDecimals>(char*, double);
template char* writeFixed<kDocumentDecimals>(char*, double);
