#pragma once

#include <concepts>
#include <cstddef>
#include <cstring>
#include <string_view>
#include <type_traits>

#include "json/DigitPairs.h"

namespace loomstat {

/// A text under construction that can grow to the size of the largest document. Growing moves the pages of a
/// large text instead of copying them where the C library can do so, and room that is not written to costs no
/// memory.
class TextBuffer {
 public:
  TextBuffer() = default;
  ~TextBuffer();
  TextBuffer(const TextBuffer&) = delete;
  TextBuffer& operator=(const TextBuffer&) = delete;

  std::string_view text() const { return {_start, size()}; }
  std::size_t size() const { return static_cast<std::size_t>(_end - _start); }
  bool empty() const { return _end == _start; }
  void clear() { _end = _start; }

  void append(char byte) {
    makeRoom(1);
    *_end++ = byte;
  }

  void append(std::string_view text) {
    if (text.empty()) return;
    makeRoom(text.size());
    std::memcpy(_end, text.data(), text.size());
    _end += text.size();
  }

  /// Appends the number in decimal.
  void appendNumber(std::unsigned_integral auto number) {
    makeRoom(kLongestNumber);
    char digits[2 * kLongestNumber];
    char* const end = digits + kLongestNumber;
    char* start = end;
    while (number >= 100) start = putPair(start, number);
    if (number >= 10) {
      start = putPair(start, number);
    } else {
      *--start = static_cast<char>('0' + number);
    }
    // What follows the digits goes along: a copy of one size is faster than one of just the digits.
    std::memcpy(_end, start, kLongestNumber);
    _end += end - start;
  }

  void appendNumber(std::signed_integral auto number) {
    using Magnitude = std::make_unsigned_t<decltype(number)>;
    const auto magnitude = static_cast<Magnitude>(number);
    if (number < 0) append('-');
    appendNumber(number < 0 ? static_cast<Magnitude>(0 - magnitude) : magnitude);
  }

 private:
  static constexpr std::size_t kLongestNumber = 20;

  void makeRoom(std::size_t size) {
    if (static_cast<std::size_t>(_limit - _end) < size) grow(size);
  }
  void grow(std::size_t more);

  char* _start = nullptr;
  char* _end = nullptr;    ///< of the text
  char* _limit = nullptr;  ///< of the room for it
};

}  // namespace loomstat
