#include "json/TextBuffer.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "support/WholeText.h"

namespace {

using loomstat::TextBuffer;

TEST(TextBuffer, EqualsAString) {
  std::mt19937 numbers(1);
  TextBuffer buffer;
  TextBuffer other;
  std::string expected;
  std::string text;
  for (int i = 0; i < 4000; ++i) {
    const std::size_t length = numbers() % 100 == 0 ? numbers() % 200000 : numbers() % 40;
    text.assign(length, static_cast<char>('a' + i % 26));
    if (length > 0) text.back() = '|';
    buffer.append('<');
    buffer.append(text);
    expected += '<' + text;
    other.append(text);
  }
  buffer.append(other);
  EXPECT_TRUE(wholeText(buffer) == expected + wholeText(other));
  buffer.clear();
  EXPECT_TRUE(buffer.empty());
  EXPECT_EQ(wholeText(buffer), "");
}

template <typename Number>
void expectDigits(Number number) {
  TextBuffer buffer;
  buffer.appendNumber(number);
  EXPECT_EQ(wholeText(buffer), std::to_string(number));
}

TEST(TextBuffer, WritesNumbersOfAllLengths) {
  unsigned long long power = 1;
  for (int digits = 1; digits <= 20; ++digits, power *= 10)
    for (const unsigned long long number : {power - 1, power, power + 1}) {
      expectDigits(number);
      expectDigits(static_cast<long long>(0 - number));
      expectDigits(static_cast<unsigned int>(number));
      expectDigits(static_cast<int>(number));
    }
  expectDigits(std::numeric_limits<unsigned long long>::max());
  expectDigits(std::numeric_limits<long long>::min());
  expectDigits(std::numeric_limits<int>::min());
}

}  // namespace
