/// Bounds-checked access to all bytes of a recording.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace zelkit {

/// A shrinking view of little-endian bytes. A read past the end returns 0 or an empty text and clears ok()
/// for good, so a reader can read all fields and check once.
class Bytes {
 public:
  Bytes() = default;
  explicit Bytes(std::string_view bytes) : _bytes(bytes) {}

  std::uint8_t u8() { return number<std::uint8_t>(); }
  std::uint16_t u16() { return number<std::uint16_t>(); }
  std::uint32_t u32() { return number<std::uint32_t>(); }
  std::uint64_t u64() { return number<std::uint64_t>(); }

  /// Returns the next `size` bytes.
  std::string_view take(std::uint64_t size) {
    if (size > _bytes.size()) return runShort();
    const std::string_view taken = _bytes.substr(0, static_cast<std::size_t>(size));
    _bytes.remove_prefix(static_cast<std::size_t>(size));
    return taken;
  }
  void skip(std::uint64_t size) { take(size); }

  /// Returns the next `size` bytes up to their first NUL.
  std::string_view text(std::uint64_t size) {
    const std::string_view field = take(size);
    return field.substr(0, field.find('\0'));
  }
  /// Returns the text up to the next NUL and skips that; without one ok() is cleared.
  std::string_view text() {
    const std::size_t end = _bytes.find('\0');
    if (end == std::string_view::npos) return runShort();
    const std::string_view found = take(end);
    skip(1);
    return found;
  }

  [[nodiscard]] std::size_t left() const { return _bytes.size(); }
  [[nodiscard]] bool ok() const { return _ok; }

 private:
  template <typename Number>
  Number number() {
    Number value = 0;
    if (sizeof value > _bytes.size()) {
      runShort();
    } else {
      std::memcpy(&value, _bytes.data(), sizeof value);
      _bytes.remove_prefix(sizeof value);
    }
    return value;
  }

  std::string_view runShort() {
    _ok = false;
    _bytes = {};
    return {};
  }

  std::string_view _bytes;
  bool _ok = true;
};

/// Returns the unsigned number at an offset that must be inside the bytes.
template <typename Number>
Number numberAt(std::string_view bytes, std::size_t offset) {
  Number value = 0;
  if (offset + sizeof value <= bytes.size()) std::memcpy(&value, bytes.data() + offset, sizeof value);
  return value;
}

}  // namespace zelkit
