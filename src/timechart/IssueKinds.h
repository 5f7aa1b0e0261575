#pragma once

#include <array>
#include <cstdint>

#include "timechart/ChartEntry.h"

/// Labels and colours of the markers of one kind of work issued to a GPU core.
struct IssueKind {
  const char* gpuTip;   ///< in the rows of the core; null for none
  const char* taskTip;  ///< in the rows of the task
  ChartColours colours;
};

/// Indexed by status - kIssue.
inline constexpr std::array<IssueKind, 4> kIssueKinds = {{
    {nullptr, "Issue", {"#66ccff", "#66ccff"}},
    {"GL", "GL Issue", {"#00ff00", "#00ff00"}},
    {"CL", "CL Issue", {"#993CF3", "#993CF3"}},
    {"C2D", "C2D Issue", {"#f660ab", "#f660ab"}},
}};

/// Returns the value of an issue's marker: 2 if `sub` says that the work ends a frame, else 1.
constexpr std::uint8_t issueValue(unsigned int sub) {
  return sub == 1 ? 2 : 1;
}
