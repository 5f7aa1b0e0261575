#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "recording/Recording.h"

namespace zelkit {

/// Contents of a recording, counted in one pass.
class Survey : public EventSink {
 public:
  explicit Survey(Recording& recording);

  void mapping(const MappingEvent& event) override;
  void sample(const Sample& sample) override;
  void lost(std::uint64_t records, bool samplesOnly) override;
  void damaged(std::uint32_t type) override;

  std::vector<std::uint64_t> samples;  ///< by event
  std::uint64_t damagedSamples = 0;
  std::uint64_t mappings = 0;
  std::uint64_t lostRecords = 0;
  std::uint64_t lostSamples = 0;
  std::uint64_t deepestTrace = 0;
  std::uint64_t userStacks = 0;
  std::uint64_t firstTime = ~std::uint64_t{0};  ///< nanoseconds
  std::uint64_t lastTime = 0;
  /// The symbol by which perf identifies the kernel's load address, and that address; empty if addresses were
  /// hidden.
  std::string kernelSymbol;
  std::uint64_t kernelSymbolAddress = 0;
  std::uint64_t kernelMapping = ~std::uint64_t{0};  ///< lowest start of the kernel's mappings
};

}  // namespace zelkit
