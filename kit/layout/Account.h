#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace zelkit {

/// What became of a recording: every record is kept, made, changed or dropped, and every sample comes out or
/// is told as lost. The invariant is balanced().
struct Account {
  /// Counts by name.
  using Tally = std::map<std::string, std::uint64_t, std::less<>>;

  /// A piece of code that lies elsewhere in the document than on the device.
  struct MovedMapping {
    std::uint32_t pid;
    std::uint64_t start;
    std::uint64_t size;
    std::uint64_t original;
    std::size_t file;  ///< index into MappedFiles
  };

  std::uint64_t samplesIn = 0;  ///< all records of samples, of trace-points too
  std::uint64_t plainSamplesOut = 0;
  std::uint64_t tracePointsOut = 0;
  Tally samplesLost;  ///< by reason

  Tally kept;       ///< records, by kind
  Tally made;       ///< records that the recording does not have, by kind
  Tally dropped;    ///< records, by kind and reason
  Tally shortened;  ///< names and back-traces, by kind
  Tally unnamed;    ///< samples without a function, by reason
  Tally noPlace;    ///< mappings whose addresses had to stay, by name

  std::uint64_t recordsLostByKernel = 0;
  std::uint64_t samplesLostByKernel = 0;
  std::uint64_t highCores = 0;   ///< plain samples that are shown on core 16 although theirs is higher
  std::uint64_t userStacks = 0;  ///< samples whose callers would have to be unwound from a copied stack
  std::uint64_t cutTraces = 0;   ///< back-traces of which the outermost entries were left out
  std::uint64_t cutEntries = 0;
  std::vector<MovedMapping> moved;

  [[nodiscard]] std::uint64_t lostSamples() const {
    std::uint64_t sum = 0;
    for (const auto& [reason, count] : samplesLost) sum += count;
    return sum;
  }
  /// Samples in are samples out and told losses.
  [[nodiscard]] bool balanced() const {
    return samplesIn == plainSamplesOut + tracePointsOut + lostSamples();
  }
};

/// Adds to a count of a tally.
inline void count(Account::Tally& tally, std::string_view name, std::uint64_t number = 1) {
  const auto found = tally.find(name);
  if (found != tally.end()) {
    found->second += number;
  } else {
    tally.emplace(name, number);
  }
}

}  // namespace zelkit
