#include "base/TargetNumbers.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>

int targetStrtol(const char* text, const char** end) {
  char* stop = nullptr;
  const long long value = std::strtoll(text, &stop, 10);
  if (end != nullptr) *end = stop;
  return static_cast<int>(std::clamp<long long>(value, INT32_MIN, INT32_MAX));
}

unsigned long long truncateToUnsigned64(double value) {
  if (!(value > 0.0)) return 0;
  if (value >= 0x1p64) return std::numeric_limits<unsigned long long>::max();
  return static_cast<unsigned long long>(value);
}

long long truncateToSigned64(double value) {
  if (std::isnan(value)) return 0;
  if (value >= 0x1p63) return std::numeric_limits<long long>::max();
  if (value < -0x1p63) return std::numeric_limits<long long>::min();
  return static_cast<long long>(value);
}

double asOnTarget(double result, double left, double right) {
  if (!std::isnan(result)) return result;
  if (std::isnan(left)) return left;
  if (std::isnan(right)) return right;
  return std::numeric_limits<double>::quiet_NaN();
}
