#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "records/PerfFactory.h"

/// The bytes of a record in the shared record buffer, little-endian, and the one gate through which they come
/// in. Offsets count from the start of the record and may come from the recording: what is beyond the
/// buffer's end reads as 0, or as an empty text. A record that is shorter than its layout reads what an
/// earlier one left after it.
class RecordView {
 public:
  /// A record as a creation function gets it: the start of PerfFactory's buffer, or of a whole record of the
  /// caller's own.
  explicit RecordView(const char* record) : _bytes(record, PerfFactory::lengthOf(record)) {}

  std::uint16_t u16(std::size_t offset) const { return load<std::uint16_t>(offset); }
  std::uint32_t u32(std::size_t offset) const { return load<std::uint32_t>(offset); }
  std::int32_t i32(std::size_t offset) const { return load<std::int32_t>(offset); }
  unsigned long long u64(std::size_t offset) const { return load<unsigned long long>(offset); }

  /// The text at the offset, up to its NUL or the buffer's end.
  std::string_view text(std::size_t offset) const;

 private:
  template <typename Number>
  Number load(std::size_t offset) const {
    static_assert(std::endian::native == std::endian::little, "the bytes are taken as they stand");
    Number value = 0;
    if (offset <= _bytes.size() && sizeof value <= _bytes.size() - offset)
      std::memcpy(&value, _bytes.data() + offset, sizeof value);
    return value;
  }

  std::string_view _bytes;
};
