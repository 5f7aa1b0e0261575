#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "recording/Bytes.h"

namespace zelkit {

/// Types of records: those of the kernel (linux/perf_event.h), of perf from 64 up and of Android's recorder
/// from 32768 up.
enum RecordType : std::uint32_t {
  kRecordMmap = 1,
  kRecordLost = 2,
  kRecordComm = 3,
  kRecordExit = 4,
  kRecordFork = 7,
  kRecordSample = 9,
  kRecordMmap2 = 10,
  kRecordLostSamples = 13,
  kFirstOfPerf = 64,
  kRecordAttribute = 64,
  kRecordTracingData = 66,
  kRecordBuildId = 67,
  kRecordFinishedRound = 68,
  kRecordAuxTrace = 71,
  kRecordFeature = 80,
  kRecordCompressed = 81,
  kRecordCompressed2 = 83,
  kFirstOfAndroid = 32768,
  kRecordKernelSymbols = 32769,
  kRecordSplit = 32772,
  kRecordSplitEnd = 32773,
  kRecordEventIds = 32774,
  kRecordCallChain = 32775,
};

/// One record of the file: a header of 8 bytes (u32 type, u16 misc, u16 size with the header), then the body.
struct Record {
  static constexpr std::size_t kHeaderSize = 8;

  std::uint32_t type = 0;
  std::uint16_t misc = 0;
  std::string_view body;

  /// Reads the record at the start of the bytes and its size. Returns false if the bytes do not contain all
  /// of it.
  static bool first(std::string_view bytes, Record& record, std::size_t& size) {
    if (bytes.size() < kHeaderSize) return false;
    record.type = numberAt<std::uint32_t>(bytes, 0);
    record.misc = numberAt<std::uint16_t>(bytes, 4);
    size = numberAt<std::uint16_t>(bytes, 6);
    // The sizes of Android's own records need more than 16 bits; the misc field, which they do not use, holds
    // the upper ones.
    if (record.type >= kFirstOfAndroid) size |= static_cast<std::size_t>(record.misc) << 16;
    if (size < kHeaderSize || size > bytes.size()) return false;
    record.body = bytes.substr(kHeaderSize, size - kHeaderSize);
    return true;
  }
};

}  // namespace zelkit
