#pragma once

#include <cstdint>

/// The first 56 bytes of a perf.data file, little-endian, as perf's file format has them. Only the positions
/// of event table and data section are read; the magic is not.
struct PerfRecordHeaderS {
  std::uint64_t magic;
  std::uint64_t headerSize;
  std::uint64_t attrSize;
  std::uint64_t attrsOffset;
  std::uint64_t attrsSize;
  std::uint64_t dataOffset;
  std::uint64_t dataSize;
};
static_assert(sizeof(PerfRecordHeaderS) == 56);
