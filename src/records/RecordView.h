#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "records/PerfFactory.h"

/// Bounds-checked access to the little-endian fields of a record in the shared record buffer. All fields of
/// records are read through it. Offsets count from the start of the record and may come from the recording:
/// beyond the buffer's end a number reads as 0 and a text as empty. A record that is shorter than its layout
/// reads bytes of earlier records after its end.
class RecordView {
 public:
  /// `record` is the start of PerfFactory's buffer, or of a complete record in a buffer of the caller.
  explicit RecordView(const char* record) : _bytes(record, PerfFactory::lengthOf(record)) {}

  /// Return the number at the offset, or 0 beyond the buffer's end.
  std::uint16_t u16(std::size_t offset) const { return load<std::uint16_t>(offset); }
  std::uint32_t u32(std::size_t offset) const { return load<std::uint32_t>(offset); }
  std::int32_t i32(std::size_t offset) const { return load<std::int32_t>(offset); }
  unsigned long long u64(std::size_t offset) const { return load<unsigned long long>(offset); }

  /// Returns the text at the offset, up to its NUL or the buffer's end.
  std::string_view text(std::size_t offset) const;

 private:
  template <typename Number>
  Number load(std::size_t offset) const {
    static_assert(std::endian::native == std::endian::little,
                  "numbers are loaded in the byte order of the machine");
    Number value = 0;
    if (offset <= _bytes.size() && sizeof value <= _bytes.size() - offset)
      std::memcpy(&value, _bytes.data() + offset, sizeof value);
    return value;
  }

  std::string_view _bytes;
};
