#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelkit {

/// What the kernel was asked to record: struct perf_event_attr of linux/perf_event.h, with the name that perf
/// gave it and the ids that its records bear.
struct EventDescription {
  static constexpr std::uint32_t kSoftware = 1;
  static constexpr std::uint32_t kTracePoint = 2;

  std::uint32_t type = 0;
  std::uint64_t config = 0;  ///< of a trace-point its number, which is also its common_type
  std::uint64_t sampleType = 0;
  std::uint64_t readFormat = 0;
  std::uint64_t branchSampleType = 0;
  std::uint64_t userRegisters = 0;  ///< one bit a register
  bool sampleIdAll = false;         ///< whether all records end with the fields that tell where and when
  std::string name = {};
  std::vector<std::uint64_t> ids = {};

  [[nodiscard]] bool isTracePoint() const { return type == kTracePoint; }
  /// Whether the event never has samples: it stands for the records of processes and mappings alone.
  [[nodiscard]] bool isDummy() const { return type == kSoftware && config == 9; }
  /// Returns the name, or one made of type and config where the recording has none.
  [[nodiscard]] std::string label() const;

  /// Reads the attribute; of a short one, as older kernels have it, the rest is 0.
  static EventDescription of(std::string_view attribute);
};

}  // namespace zelkit
