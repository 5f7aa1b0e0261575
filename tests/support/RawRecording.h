#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

/// One record of a recording, verbatim.
struct RawRecord {
  std::uint32_t type = 0;
  std::string bytes;

  std::uint32_t u32(std::size_t offset) const { return load<std::uint32_t>(offset); }
  std::uint64_t u64(std::size_t offset) const { return load<std::uint64_t>(offset); }

 private:
  template <typename Number>
  Number load(std::size_t offset) const {
    Number value = 0;
    if (offset + sizeof value <= bytes.size()) std::memcpy(&value, bytes.data() + offset, sizeof value);
    return value;
  }
};

/// A second reader, for tests that check the program's documents against the file: walks the data section
/// by the sizes of its records and knows nothing of damage.
inline std::vector<RawRecord> rawRecords(const std::string& file) {
  std::vector<RawRecord> records;
  const RawRecord header{0, file.substr(0, 56)};
  auto place = static_cast<std::size_t>(header.u64(40));
  const std::size_t end = place + static_cast<std::size_t>(header.u64(48));
  while (place + 8 <= end) {
    const RawRecord head{0, file.substr(place, 8)};
    const std::size_t size = head.u32(4) >> 16;
    if (size < 8) break;
    records.push_back({head.u32(0), file.substr(place, size)});
    place += size;
  }
  return records;
}

/// The number that the event table gives a name, or all ones.
inline std::uint64_t eventNumber(const std::string& file, const std::string& name) {
  const RawRecord header{0, file.substr(0, 56)};
  for (auto place = static_cast<std::size_t>(header.u64(24) + header.u64(32)); place + 72 <= header.u64(40);
       place += 72)
    if (std::strcmp(file.c_str() + place + 8, name.c_str()) == 0)
      return RawRecord{0, file.substr(place, 8)}.u64(0);
  return ~0ULL;
}
