#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

/// What of a recording's data section came to nothing, counted by kind while it is read. What follows the
/// data section is read as records as well and comes to nothing by rights, so it is left out here.
struct RecordLosses {
  /// Types above are no record's.
  static constexpr std::size_t kTypes = 96;

  std::array<std::uint64_t, kTypes> passedOver{};  ///< records that nothing was made of, by type
  std::uint64_t longRecords = 0;                   ///< records of more than the 256 bytes that are read
  std::uint64_t longSamples = 0;                   ///< the samples among them
  std::uint64_t bytes = 0;                         ///< passed over in search of the next record
  std::uint64_t lostByKernel = 0;                  ///< as PERF_RECORD_LOST and PERF_RECORD_LOST_SAMPLES say

  std::uint64_t dataEnd = ~std::uint64_t{0};  ///< offset of the data section's end, for who counts

  /// Counts a header that is not read: of a record that is too long, or of a type that the program does not
  /// know. Other values are damage.
  void countRejected(std::uint32_t type, std::uint16_t size);

  /// Counts a record that nothing was made of; `record` has `size` bytes.
  void countPassedOver(std::uint32_t type, const char* record, std::size_t size);
};

/// The name of a record type without its "PERF_RECORD_", as linux/perf_event.h and perf's own headers have
/// it; empty for a number that is no type.
std::string_view recordTypeName(std::uint32_t type);
