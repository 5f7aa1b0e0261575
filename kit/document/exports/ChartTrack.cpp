#include "document/exports/ChartTrack.h"

#include <array>
#include <charconv>
#include <string_view>

namespace zelkit {

namespace {

constexpr std::array<const char*, 4> kMadeNames = {"Cores", "GPU", "Interrupts", "Markers"};

/// Returns the number at index `start` of the text; 0 if there is none.
std::uint32_t numberAt(std::string_view text, std::size_t start) {
  std::uint32_t number = 0;
  if (start < text.size()) std::from_chars(text.data() + start, text.data() + text.size(), number);
  return number;
}

/// Returns the parent in "TASK_PARENT_proc_root", or the task itself if there is none.
std::uint32_t parentIn(std::string_view treeId, std::uint32_t task) {
  const std::string own = std::to_string(task) + "_";
  const std::size_t found = treeId.find(own);
  const std::string_view rest = found == std::string_view::npos ? "" : treeId.substr(found + own.size());
  return rest.empty() || rest.starts_with("proc_root") ? task : numberAt(rest, 0);
}

}  // namespace

/// Ids are "cpu-N-...", "gpu-A-B-...", "irq-X-N", "proc-P-..." and "evt".
ChartTrack ChartTrack::of(const SeriesHead& head) {
  const std::string_view id = head.id;
  if (!id.starts_with("proc-")) {
    const bool isCore = id.starts_with("cpu-");
    const bool isGpu = id.starts_with("gpu-");
    const bool isInterrupt = id.starts_with("irq-");
    const MadeProcess pid = isCore ? kCores : isGpu ? kGpu : isInterrupt ? kInterrupts : kMarkers;
    return {pid, 0, kMadeNames[pid - kCores], isInterrupt ? head.name + " " + std::string(id) : head.name};
  }
  const std::uint32_t task = numberAt(id, 5);
  const std::uint32_t parent = parentIn(head.treeId, task);
  return {parent, task, task == parent ? head.name : "process " + std::to_string(parent), head.name};
}

}  // namespace zelkit
