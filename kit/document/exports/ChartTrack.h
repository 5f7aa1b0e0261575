/// The track of a series in viewers that draw processes and threads.
#pragma once

#include <cstdint>
#include <string>

#include "document/DocumentVisitor.h"

namespace zelkit {

/// Tasks are threads of their process; cores, GPU, interrupts and markers are threads of synthetic processes,
/// with ids above those of Linux.
struct ChartTrack {
  enum MadeProcess : std::uint32_t { kCores = 1U << 30U, kGpu, kInterrupts, kMarkers };

  std::uint32_t pid = 0;
  /// 0 for a series with its own track. The series of a task share its thread, as a task does one thing at a
  /// time.
  std::uint32_t tid = 0;
  std::string process;
  std::string thread;

  /// Returns the track of a series, from its id and treeId.
  static ChartTrack of(const SeriesHead& head);
};

}  // namespace zelkit
