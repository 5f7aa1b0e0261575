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

/// Which documents a recording gives.
enum class Kind { profile, timechart };

struct Choice {
  std::vector<Kind> documents;     ///< empty if nothing would come out
  std::size_t event = 0;           ///< whose samples the profile shows
  std::uint64_t plainSamples = 0;  ///< of that event
  std::uint64_t tracePoints = 0;   ///< that a timechart shows
  std::vector<std::string> notes;  ///< what is left out, a line each
};

/// Chooses by what the recording holds. `eventName`: the event that the user wants in the profile, empty for
/// the first that has samples; trace-points come last, as they have a document of their own. Throws
/// std::runtime_error if there is no such event.
Choice choose(const Recording& recording, const Survey& survey, const OldPayloads& payloads,
              const std::string& eventName);

}  // namespace zelkit
