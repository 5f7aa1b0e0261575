#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <deque>
#include <memory>
#include <span>

/// One entry of a back-trace: an address, and the key of the symbol or map there. Stored as three 32-bit
/// words: 12 bytes instead of 16.
class BackTraceEntry {
 public:
  BackTraceEntry(unsigned long long address, unsigned int key)
      : _addressLow(static_cast<std::uint32_t>(address)),
        _addressHigh(static_cast<std::uint32_t>(address >> 32)),
        _key(key) {}

  unsigned long long address() const {
    return static_cast<unsigned long long>(_addressHigh) << 32 | _addressLow;
  }
  unsigned int key() const { return _key; }

 private:
  std::uint32_t _addressLow;
  std::uint32_t _addressHigh;
  std::uint32_t _key;
};

/// The entries of all back-traces. The same few entries are repeated, so a back-trace is a list of indexes,
/// and the latest texts of the entries are kept in a direct-mapped cache.
class BackTraceEntries {
 public:
  using Index = std::uint32_t;
  static constexpr Index kNone = 0;

  /// Returns the index of a new entry, which is never kNone.
  Index add(const BackTraceEntry& entry) {
    _entries.push_back(entry);
    return static_cast<Index>(_entries.size());
  }

  const BackTraceEntry& operator[](Index index) const { return _entries[index - 1]; }

  /// Returns how many bytes `write` may write for so many entries.
  static constexpr std::size_t room(std::size_t entries) { return 2 + entries * kRoomOfText; }

  /// Writes a back-trace as an array without white space, [[address,key,],], and returns its end.
  char* write(char* text, std::span<const Index> trace) {
    if (!_texts) _texts = std::make_unique<Texts>();
    *text++ = '[';
    for (const Index index : trace) {
      const Text& entry = textOf(index);
      // Always all bytes: a copy of fixed size takes no call.
      std::memcpy(text, entry.bytes.data(), kRoomOfText);
      text += entry.length;
    }
    *text++ = ']';
    return text;
  }

 private:
  /// Of 20 digits, 10 digits and "[,,],".
  static constexpr std::size_t kRoomOfText = 20 + 10 + 5;

  struct Text {
    Index index = kNone;
    std::uint8_t length = 0;
    std::array<char, kRoomOfText> bytes{};
  };

  const Text& textOf(Index index) {
    Text& text = (*_texts)[index % kTexts];
    if (text.index != index) format(text, index);
    return text;
  }
  void format(Text& text, Index index) const;

  static constexpr std::size_t kTexts = std::size_t{1} << 14;
  using Texts = std::array<Text, kTexts>;

  std::deque<BackTraceEntry> _entries;
  std::unique_ptr<Texts> _texts;  ///< null before the first is written
};
