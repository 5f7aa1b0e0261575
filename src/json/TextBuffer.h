#pragma once

#include <charconv>
#include <concepts>
#include <cstddef>
#include <cstring>
#include <string_view>

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
  void appendNumber(std::integral auto number) {
    makeRoom(kLongestNumber);
    _end = std::to_chars(_end, _limit, number).ptr;
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
