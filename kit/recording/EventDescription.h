#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelkit {

/// An event that was recorded: struct perf_event_attr of linux/perf_event.h, the name that perf gave it, and
/// the ids in its records.
struct EventDescription {
  static constexpr std::uint32_t kSoftware = 1;
  static constexpr std::uint32_t kTracePoint = 2;

  std::uint32_t type = 0;
  std::uint64_t config = 0;  ///< for a trace-point its number, which is also its common_type
  std::uint64_t sampleType = 0;
  std::uint64_t readFormat = 0;
  std::uint64_t branchSampleType = 0;
  std::uint64_t userRegisters = 0;  ///< one bit per register
  bool sampleIdAll = false;         ///< whether all records end with id, time, CPU and so on
  std::string name = {};
  std::vector<std::uint64_t> ids = {};

  [[nodiscard]] bool isTracePoint() const { return type == kTracePoint; }
  /// Returns whether the event never has samples and exists only for records of processes and mappings.
  [[nodiscard]] bool isDummy() const { return type == kSoftware && config == 9; }
  /// Returns the name, or one made of type and config if the recording has none.
  [[nodiscard]] std::string label() const;

  /// Reads an attribute; fields missing in the shorter ones of older kernels are 0.
  static EventDescription of(std::string_view attribute);
};

}  // namespace zelkit
