#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

/// Counts, by kind, what is lost of a recording's data section while it is read. What follows the data
/// section is read as records too but is none, so it does not count as lost.
struct RecordLosses {
  /// One more than the largest type that is counted; records have no larger ones.
  static constexpr std::size_t kTypes = 96;

  std::array<std::uint64_t, kTypes> passedOver{};  ///< records that made no object, by type
  std::uint64_t longRecords = 0;                   ///< records of more than 256 bytes, which are not read
  std::uint64_t longSamples = 0;                   ///< the samples among them
  std::uint64_t bytes = 0;                         ///< skipped in search of the next record
  std::uint64_t lostByKernel = 0;                  ///< total of PERF_RECORD_LOST and PERF_RECORD_LOST_SAMPLES

  std::uint64_t dataEnd =
      ~std::uint64_t{0};  ///< offset of the data section's end; losses after it do not count

  /// Counts the header of a record that is too long, or of a type that the program does not know. Headers
  /// with other values are damage and not counted.
  void countRejected(std::uint32_t type, std::uint16_t size);

  /// Counts a record that made no object; `record` has `size` bytes.
  void countPassedOver(std::uint32_t type, const char* record, std::size_t size);
};

/// Returns the name of a record type in linux/perf_event.h or in perf's own headers, without "PERF_RECORD_";
/// empty for an unknown number.
std::string_view recordTypeName(std::uint32_t type);
