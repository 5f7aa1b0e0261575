#include "timechart/ChartEntry.h"

#include <algorithm>
#include <array>

#include "json/PerfJSONWriter.h"

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

bool hasChanges(const ChartSeries& series) {
  const auto& samples = series.samples();
  return std::any_of(samples.begin(), samples.end(),
                     [](const ChartEntryS& sample) { return sample.value != 0; });
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

void ChartEntry::openData() {
  _writer.writeArrayStart("data");
}

void ChartEntry::point(const char* format, double time, unsigned int value) {
  // Points have always been cut at this length.
  char text[32];
  std::snprintf(text, sizeof text, format, time, value);
  _writer.writeJson(text);
}

void ChartEntry::closeData() {
  _writer.writeArrayEnd();
  _writer.writeStructEnd();
}

void ChartEntry::writeAll(const ChartSeries& series) {
  openData();
  for (const ChartEntryS& sample : series.samples()) point(kPointFormat, sample.time, sample.value);
  closeData();
}

void ChartEntry::writeChanges(const ChartSeries& series, const char* format) {
  openData();
  unsigned int last = 0;
  for (const ChartEntryS& sample : series.samples()) {
    if (sample.value == last) continue;
    last = sample.value;
    point(format, sample.time, sample.value);
  }
  closeData();
}
