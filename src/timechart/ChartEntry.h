#pragma once

#include <span>
#include <string>

#include "timechart/ChartSeries.h"

class PerfJSONWriter;

/// The colours of a series on a white and on a black background; null for none.
struct ChartColours {
  const char* white;
  const char* black;
};

/// Returns the colours of tasks that run on a CPU; none for CPUs above 3.
ChartColours cpuColours(int cpu);

/// The text between a point's time and value. The viewer's parser expects the blank in series of running
/// tasks and nowhere else.
enum class PointSeparator { comma, commaAndBlank };

/// Returns the formatted text, truncated to 63 bytes.
[[gnu::format(printf, 1, 2)]] std::string chartText(const char* format, ...);

/// Writes one entry of the timechart document, which is one series: the keys of its head in the order of the
/// calls, then its points.
class ChartEntry {
 public:
  explicit ChartEntry(PerfJSONWriter& writer) : _writer(writer) {}

  /// Each writes one key of the head.
  ChartEntry& text(const char* key, const std::string& value);
  ChartEntry& show(unsigned int value);
  ChartEntry& hints(ChartColours colours);

  /// Writes every sample and ends the entry.
  void writeData(std::span<const ChartEntryS> samples, PointSeparator separator = PointSeparator::comma);

 private:
  PerfJSONWriter& _writer;
  bool _started = false;
};
