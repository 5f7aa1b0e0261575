/// Where a series of a timechart is drawn in viewers that know processes and threads.
#pragma once

#include <cstdint>
#include <string>

#include "document/DocumentVisitor.h"

namespace zelkit {

/// Tasks are threads of their process; cores, GPU, interrupts and markers are threads of processes made for
/// them, with numbers above those that Linux gives.
struct ChartTrack {
  enum MadeProcess : std::uint32_t { kCores = 1U << 30U, kGpu, kInterrupts, kMarkers };

  std::uint32_t pid = 0;
  /// 0 for a series that is drawn alone: those of a task, which does one thing at a time, share its thread.
  std::uint32_t tid = 0;
  std::string process;
  std::string thread;

  static ChartTrack of(const SeriesHead& head);
};

}  // namespace zelkit
