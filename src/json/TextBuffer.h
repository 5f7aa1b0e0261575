#pragma once

#include <concepts>
#include <cstddef>
#include <cstring>
#include <string_view>
#include <type_traits>
#include <vector>

#include "base/Memory.h"
#include "json/Digits.h"

namespace loomstat {

/// A text under construction that can grow to the size of the largest document. It is kept in blocks, so that
/// growing copies nothing and reuses free blocks of the pool.
class TextBuffer {
 public:
  TextBuffer() = default;
  TextBuffer(const TextBuffer&) = delete;
  TextBuffer& operator=(const TextBuffer&) = delete;

  /// Returns the text, cut at the ends of blocks. The last piece may be empty.
  std::vector<std::string_view> pieces() const;
  bool empty() const { return _full.empty() && _end == _block.get(); }
  void clear();

  void append(char byte) {
    makeRoom(1);
    *_end++ = byte;
  }

  void append(std::string_view text) {
    if (text.size() > kLongestShort || room() < text.size()) return appendInPieces(text);
    copyShort(text, _end);
    _end += text.size();
  }

  void append(const TextBuffer& text);

  /// Calls `write(char* out)`, which writes at most `most` bytes (<= BlockPool::kBlockSize) and returns their
  /// end.
  template <typename Write>
  void append(std::size_t most, Write write) {
    makeRoom(most);
    _end = write(_end);
  }

  /// Appends the number in decimal.
  void appendNumber(std::unsigned_integral auto number) {
    append(kMostDigits, [number](char* out) { return writeDigits(out, number); });
  }

  void appendNumber(std::signed_integral auto number) {
    using Magnitude = std::make_unsigned_t<decltype(number)>;
    const auto magnitude = static_cast<Magnitude>(number);
    if (number < 0) append('-');
    appendNumber(number < 0 ? static_cast<Magnitude>(0 - magnitude) : magnitude);
  }

 private:
  struct FullBlock {
    BlockPool::Block bytes;
    std::size_t size;

    std::string_view text() const { return {bytes.get(), size}; }
  };

  /// Longest text that is copied without memcpy: most texts are short, and a call of memcpy costs more than
  /// the copy.
  static constexpr std::size_t kLongestShort = 32;
  static void copyShort(std::string_view text, char* out) {
    copyEnds<16>(text, out) || copyEnds<8>(text, out) || copyEnds<4>(text, out) || copyEnds<2>(text, out) ||
        copyEnds<1>(text, out);
  }
  /// Copies a text of Size to 2 * Size bytes by two overlapping copies of fixed size; returns false for a
  /// shorter one.
  template <std::size_t Size>
  static bool copyEnds(std::string_view text, char* out) {
    if (text.size() < Size) return false;
    const std::size_t last = text.size() - Size;
    std::memcpy(out, text.data(), Size);
    std::memcpy(out + last, text.data() + last, Size);
    return true;
  }

  std::string_view lastPiece() const { return {_block.get(), static_cast<std::size_t>(_end - _block.get())}; }
  std::size_t room() const { return static_cast<std::size_t>(_limit - _end); }
  void makeRoom(std::size_t size) {
    if (room() < size) startBlock();
  }
  void startBlock();
  void appendInPieces(std::string_view text);

  std::vector<FullBlock> _full;
  BlockPool::Block _block;  ///< the one being filled; null before the first
  char* _end = nullptr;     ///< end of the text in it
  char* _limit = nullptr;   ///< end of the block
};

}  // namespace loomstat
