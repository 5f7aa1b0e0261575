#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "base/Scatter.h"
#include "json/NumberPair.h"
#include "json/TextBuffer.h"

/// Writes lists of pairs as arrays without white space, [[first,second,],]. Lists name the same few pairs
/// again and again, so the latest texts are kept.
class PairTexts {
 public:
  void append(std::span<const NumberPair> pairs, loomstat::TextBuffer& out) {
    if (!_texts) _texts = std::make_unique<Texts>();
    out.append('[');
    for (const NumberPair& pair : pairs) {
      const Text& text = textOf(pair.first(), pair.second());
      out.append(std::string_view(text.bytes.data(), text.length));
    }
    out.append(']');
  }

 private:
  struct Text {
    void write(unsigned long long first_, unsigned int second_);

    unsigned long long first = 0;
    unsigned int second = 0;
    std::uint8_t length = 0;  ///< 0 for one that has never been written
    std::array<char, 20 + 10 + 5> bytes{};
  };

  const Text& textOf(unsigned long long first, unsigned int second) {
    const std::uint64_t both = first ^ std::uint64_t{second} << 32;
    Text& text = (*_texts)[scattered(both, kPlaceBits)];
    if (text.first != first || text.second != second || text.length == 0) text.write(first, second);
    return text;
  }

  static constexpr unsigned int kPlaceBits = 14;
  using Texts = std::array<Text, std::size_t{1} << kPlaceBits>;

  std::unique_ptr<Texts> _texts;  ///< null before the first list
};
