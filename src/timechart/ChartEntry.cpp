#include "timechart/ChartEntry.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <string_view>

#include "json/Digits.h"
#include "json/FixedDecimals.h"
#include "json/PerfJSONWriter.h"

namespace {

/// Points have always been cut at this length.
constexpr std::size_t kLongestPoint = 31;
/// The room for a point before it is cut.
constexpr std::size_t kPointRoom = kFixedRoom + kMostDigits + std::string_view("[, ]").size();

char* writePoint(char* text, const ChartEntryS& sample, PointSeparator separator) {
  *text = '[';
  char* end = writeFixed<kPointDecimals>(text + 1, sample.time);
  *end++ = ',';
  if (separator == PointSeparator::commaAndBlank) *end++ = ' ';
  end = writeDigits(end, sample.value);
  *end++ = ']';
  return std::min(end, text + kLongestPoint);
}

}  // namespace

ChartColours cpuColours(int cpu) {
  static constexpr std::array<ChartColours, 4> colours = {{
      {"#000000", "#ffffff"},
      {"#4b0082", "#caa1e0"},
      {"#006400", "#badcba"},
      {"#232381", "#a3a3e6"},
  }};
  const bool known = cpu >= 0 && static_cast<std::size_t>(cpu) < colours.size();
  return known ? colours[static_cast<std::size_t>(cpu)] : ChartColours{nullptr, nullptr};
}

std::string chartText(const char* format, ...) {
  char text[64];
  std::va_list numbers;
  va_start(numbers, format);
  std::vsnprintf(text, sizeof text, format, numbers);
  va_end(numbers);
  return text;
}

ChartEntry& ChartEntry::text(const char* key, const std::string& value) {
  if (!_started) _writer.writeStructStart();
  _started = true;
  _writer.writeNamed(key, value.c_str());
  return *this;
}

ChartEntry& ChartEntry::show(unsigned int value) {
  _writer.writeNamed("show", value);
  return *this;
}

ChartEntry& ChartEntry::hints(ChartColours colours) {
  _writer.newElementStart("hints");
  if (colours.white != nullptr) {
    _writer.writeNamed("white", colours.white);
    _writer.writeNamed("black", colours.black);
  }
  _writer.writeStructEnd();
  return *this;
}

void ChartEntry::writeData(std::span<const ChartEntryS> samples, PointSeparator separator) {
  _writer.writeJsonArray("data", samples, kPointRoom, [separator](char* text, const ChartEntryS& sample) {
    return writePoint(text, sample, separator);
  });
  _writer.writeStructEnd();
}
