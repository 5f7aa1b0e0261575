#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace zelkit {

constexpr double kMicrosecondsPerSecond = 1e6;
constexpr double kNanosecondsPerSecond = 1e9;

/// Returns the time in whole units of which a second has so many, rounded to the nearest: what comes below
/// the digits of a document is the error of their parse. A document may hold any number.
inline std::int64_t wholeUnits(double seconds, double perSecond) {
  constexpr double kMost = 9e18;
  return std::llround(std::clamp(seconds * perSecond, -kMost, kMost));
}

}  // namespace zelkit
