#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "base/FibonacciHash.h"
#include "json/TextBuffer.h"

/// One entry of a back-trace: an address, and the key of the symbol or map there. Stored as three 32-bit
/// words: 12 bytes instead of 16.
class BackTraceEntry {
 public:
  BackTraceEntry() = default;
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

/// Writes back-traces as arrays without white space, [[address,key,],]. The same few entries are repeated, so
/// their latest texts are kept in a direct-mapped cache.
class BackTraceTexts {
 public:
  void append(std::span<const BackTraceEntry> entries, loomstat::TextBuffer& out) {
    if (!_texts) _texts = std::make_unique<Texts>();
    out.append('[');
    for (const BackTraceEntry& entry : entries) {
      const Text& text = textOf(entry.address(), entry.key());
      out.append(std::string_view(text.bytes.data(), text.length));
    }
    out.append(']');
  }

 private:
  struct Text {
    void write(unsigned long long newAddress, unsigned int newKey);

    unsigned long long address = 0;
    unsigned int key = 0;
    std::uint8_t length = 0;  ///< 0 for one that has never been written
    std::array<char, 20 + 10 + 5> bytes{};
  };

  const Text& textOf(unsigned long long address, unsigned int key) {
    const std::uint64_t both = address ^ std::uint64_t{key} << 32;
    Text& text = (*_texts)[fibonacciHash(both, kSlotBits)];
    if (text.address != address || text.key != key || text.length == 0) text.write(address, key);
    return text;
  }

  static constexpr unsigned int kSlotBits = 14;
  using Texts = std::array<Text, std::size_t{1} << kSlotBits>;

  std::unique_ptr<Texts> _texts;  ///< null before the first back-trace
};
