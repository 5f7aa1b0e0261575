#include "verbs/Survey.h"

#include <algorithm>

#include "layout/Places.h"
#include "recording/RecordTypes.h"

namespace zelkit {

Survey::Survey(Recording& recording) : samples(recording.events().size()) {
  recording.walkUnordered(*this);
}

void Survey::mapping(const MappingEvent& event) {
  ++mappings;
  // A kernel that hides its addresses reports 0.
  if (!event.kernel || event.start < Places::kFirst) return;
  kernelMapping = std::min(kernelMapping, event.start);
  const std::string_view prefix = RecordingInfo::kKernel;
  if (!event.name.starts_with(prefix) || !kernelSymbol.empty()) return;
  kernelSymbol = event.name.substr(prefix.size());
  kernelSymbolAddress = event.pageOffset;
}

void Survey::sample(const Sample& sample) {
  ++samples[sample.event];
  deepestTrace = std::max<std::uint64_t>(deepestTrace, sample.chain.size());
  if (sample.hasUserStack) ++userStacks;
  firstTime = std::min(firstTime, sample.time);
  lastTime = std::max(lastTime, sample.time);
}

void Survey::lost(std::uint64_t records, bool samplesOnly) {
  (samplesOnly ? lostSamples : lostRecords) += records;
}

void Survey::damaged(std::uint32_t type) {
  if (type == kRecordSample) ++damagedSamples;
}

}  // namespace zelkit
