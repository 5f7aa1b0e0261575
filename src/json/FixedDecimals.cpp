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
/// Largest number of bits of a fraction whose tenfold fits 64 bits.
constexpr int kMostFractionBits = 60;
constexpr int kMostBitsForThousands = 54;

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

  /// Removes the next three decimals from the fraction and returns them.
  std::uint32_t takeTriple() {
    if (fractionBits <= kMostBitsForThousands) return take(1000);
    std::uint32_t triple = 0;
    for (int i = 0; i < 3; ++i) triple = 10 * triple + take(10);
    return triple;
  }

  std::uint32_t take(std::uint64_t power) {
    fraction *= power;
    const std::uint64_t taken = fraction >> fractionBits;
    fraction &= mask();
    return static_cast<std::uint32_t>(taken);
  }

  /// Returns whether the rest of the fraction rounds up a number that ends in those digits.
  bool roundsUp(std::uint32_t lastDigits) const {
    if (fractionBits == 0) return false;
    const std::uint64_t half = std::uint64_t{1} << (fractionBits - 1);
    return fraction > half || (fraction == half && lastDigits % 2 != 0);
  }

  bool good = false;
  int fractionBits = 0;
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

/// Adds one unit in the last decimal, with carry.
template <std::size_t Triples>
void addUnit(std::uint64_t& whole, std::array<std::uint32_t, Triples>& triples) {
  for (std::size_t i = Triples; i-- != 0;) {
    if (++triples[i] != 1000) return;
    triples[i] = 0;
  }
  ++whole;
}

}  // namespace

// A document holds a time for every sample, and printf takes ten times as long.
template <int Decimals>
char* writeFixed(char* text, double value) {
  static_assert(Decimals % 3 == 0);
  Parts parts(value);
  if (!parts.good) return text + std::snprintf(text, kFixedRoom, "%.*f", Decimals, value);
  std::array<std::uint32_t, Decimals / 3> triples;
  for (std::uint32_t& triple : triples) triple = parts.takeTriple();
  if (parts.roundsUp(triples.back())) addUnit(parts.whole, triples);

  if (std::signbit(value)) *text++ = '-';
  text = writeDigits(text, parts.whole);
  *text++ = '.';
  for (const std::uint32_t triple : triples) text = writeTriple(text, triple);
  return text;
}

template char* writeFixed<kPointDecimals>(char*, double);
template char* writeFixed<kDocumentDecimals>(char*, double);
