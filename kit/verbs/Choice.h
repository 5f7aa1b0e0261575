#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "recording/Recording.h"
#include "tracepoints/OldPayloads.h"
#include "verbs/Survey.h"

namespace zelkit {

/// The documents to make of a recording.
enum class Kind { profile, timechart };

struct Choice {
  std::vector<Kind> documents;     ///< empty if there is nothing to convert
  std::size_t event = 0;           ///< the event whose samples the profile shows
  std::uint64_t plainSamples = 0;  ///< number of samples of that event
  std::uint64_t tracePoints = 0;   ///< number of samples that a timechart shows
  std::vector<std::string> notes;  ///< one line for each thing that is left out
};

/// Returns the choice for a recording. `eventName`: the event to show in the profile, empty for the first
/// with samples; trace-points come last, as they have their own document. Throws std::runtime_error if there
/// is no such event.
Choice choose(const Recording& recording, const Survey& survey, const OldPayloads& payloads,
              const std::string& eventName);

}  // namespace zelkit
