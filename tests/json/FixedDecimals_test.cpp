#include "json/FixedDecimals.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <string>

namespace {

template <int Decimals>
void expectLikePrintf(double value) {
  char text[kFixedRoom];
  char expected[400];
  std::snprintf(expected, sizeof expected, "%.*f", Decimals, value);
  ASSERT_EQ(std::string(text, writeFixed<Decimals>(text, value)), expected) << std::hexfloat << value;
}

void expectLikePrintf(double value) {
  expectLikePrintf<kPointDecimals>(value);
  expectLikePrintf<kDocumentDecimals>(value);
}

TEST(FixedDecimals, AreThoseOfPrintfAtTheEdges) {
  using limits = std::numeric_limits<double>;
  for (const double value :
       {0.0, 0x1p-8, 0x1p-9, 0.5, 0.9999999995, 0.99999999949999, 9.9999995, 999999999.9999999995, 0x1p52,
        0x1p53, 0x1p53 - 1, 0x1p60, 1e16, 1e300, limits::min(), limits::denorm_min(), limits::max(),
        limits::infinity(), limits::quiet_NaN()})
    for (const double neighbour :
         {value, std::nextafter(value, 0.0), std::nextafter(value, limits::infinity())}) {
      expectLikePrintf(neighbour);
      expectLikePrintf(-neighbour);
    }
}

TEST(FixedDecimals, AreThoseOfPrintfForTimesTiesAndAnyBits) {
  std::mt19937_64 numbers(1);
  for (int i = 0; i < 100000; ++i) {
    expectLikePrintf(static_cast<double>(numbers() % 20000000000000000) / 1e9);
    expectLikePrintf((static_cast<double>(numbers() % 4000000) + 0.5) / std::exp2(numbers() % 12));
    expectLikePrintf(std::bit_cast<double>(numbers()));
  }
}

}  // namespace
