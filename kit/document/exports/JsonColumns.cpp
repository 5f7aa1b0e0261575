#include "document/exports/JsonColumns.h"

#include <algorithm>
#include <array>
#include <charconv>

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
  std::array<char, 32> text{};
  char* const whole = text.data();
  char* const point = std::to_chars(whole, whole + text.size(), time / kNanosecondsPerMillisecond).ptr;
  // The leading 1 keeps the zeros of the fraction, and is overwritten by the point.
  std::array<char, 7> decimals{};
  std::to_chars(decimals.data(), decimals.data() + decimals.size(), kNanosecondsPerMillisecond + fraction);
  decimals[0] = '.';
  char* end = std::copy(decimals.begin(), decimals.end(), point);
  while (end[-1] == '0') --end;
  raw({whole, static_cast<std::size_t>(end - whole)}, rapidjson::kNumberType);
}

}  // namespace zelkit
