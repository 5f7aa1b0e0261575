#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace zelkit {

/// Statistics of a conversion: every record is kept, created, changed or dropped, and every sample is in the
/// output or counted as lost. The invariant is balanced().
struct Account {
  /// Counts by name.
  using Tally = std::map<std::string, std::uint64_t, std::less<>>;

  /// A code mapping whose address in the document differs from that on the device.
  struct MovedMapping {
    std::uint32_t pid;
    std::uint64_t start;
    std::uint64_t size;
    std::uint64_t original;
    std::size_t file;  ///< index into MappedFiles
  };

  std::uint64_t samplesIn = 0;  ///< all sample records, including those of trace-points
  std::uint64_t plainSamplesOut = 0;
  std::uint64_t tracePointsOut = 0;
  Tally samplesLost;  ///< by reason

  Tally kept;       ///< records, by kind
  Tally made;       ///< records created by the layout, by kind
  Tally dropped;    ///< records, by kind and reason
  Tally shortened;  ///< names and back-traces, by kind
  Tally unnamed;    ///< samples without a function, by reason
  Tally noPlace;    ///< mappings that could not be moved, by name

  std::uint64_t recordsLostByKernel = 0;
  std::uint64_t samplesLostByKernel = 0;
  std::uint64_t highCores = 0;        ///< plain samples of cores above 16, which are shown on core 16
  std::uint64_t highTracePoints = 0;  ///< trace-points of cores above 15, which charts of cores leave out
  std::uint64_t cutLineages = 0;      ///< processes that could not inherit the mappings of their parents
  std::uint64_t userStacks =
      0;  ///< samples whose callers are only in a copy of the stack, which is not unwound
  std::uint64_t cutTraces = 0;  ///< back-traces without their outermost entries
  std::uint64_t cutEntries = 0;
  std::vector<MovedMapping> moved;

  /// Returns the number of lost samples, for all reasons.
  [[nodiscard]] std::uint64_t lostSamples() const {
    std::uint64_t sum = 0;
    for (const auto& [reason, count] : samplesLost) sum += count;
    return sum;
  }
  /// Returns whether all samples are accounted for: samples in = samples out + losses.
  [[nodiscard]] bool balanced() const {
    return samplesIn == plainSamplesOut + tracePointsOut + lostSamples();
  }
};

/// Adds `number` to the count of that name.
inline void count(Account::Tally& tally, std::string_view name, std::uint64_t number = 1) {
  const auto found = tally.find(name);
  if (found != tally.end()) {
    found->second += number;
  } else {
    tally.emplace(name, number);
  }
}

}  // namespace zelkit
