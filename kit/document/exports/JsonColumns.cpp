#include "document/exports/JsonColumns.h"

#include <array>
#include <charconv>
#include <cstddef>

#include "document/exports/WholeUnits.h"

namespace zelkit {

void JsonColumns::milliseconds(double seconds, double since) {
  constexpr std::int64_t kNanosecondsPerMillisecond = 1000000;
  const std::int64_t time = wholeUnits(seconds - since, kNanosecondsPerSecond);
  const std::int64_t fraction = time % kNanosecondsPerMillisecond;
  if (time < 0 || fraction == 0) {
    value(static_cast<double>(time) / static_cast<double>(kNanosecondsPerMillisecond));
    return;
  }
  // Several times as fast as the shortest digits of a double.
  constexpr std::ptrdiff_t kMostDigits = 20;  // of a number of 64 bits
  std::array<char, 2 * kMostDigits> text{};
  char* const whole = text.data();
  char* const point = std::to_chars(whole, whole + kMostDigits, time / kNanosecondsPerMillisecond).ptr;
  // The leading 1 keeps the zeros of the fraction, and is overwritten by the point.
  char* end = std::to_chars(point, whole + text.size(), kNanosecondsPerMillisecond + fraction).ptr;
  *point = '.';
  while (end[-1] == '0') --end;
  raw({whole, static_cast<std::size_t>(end - whole)}, rapidjson::kNumberType);
}

}  // namespace zelkit
