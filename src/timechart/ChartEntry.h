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

/// The colours of what runs on a CPU. CPUs from 4 up have none.
ChartColours cpuColours(int cpu);

/// The text between a point's time and value. The viewer's parser expects the blank where a task runs,
/// and nowhere else.
enum class PointSeparator { comma, commaAndBlank };

/// Returns a text of at most 63 bytes that printf makes of the format.
[[gnu::format(printf, 1, 2)]] std::string chartText(const char* format, ...);

/// One entry of the timechart document, which is one series: its head key by key, in the order of the calls,
/// then its points. Nothing is written before the first call.
class ChartEntry {
 public:
  explicit ChartEntry(PerfJSONWriter& writer) : _writer(writer) {}

  ChartEntry& text(const char* key, const std::string& value);
  ChartEntry& show(unsigned int value);
  ChartEntry& hints(ChartColours colours);

  void openData();
  void point(double time, unsigned int value, PointSeparator separator = PointSeparator::comma);
  void closeData();

  /// Opens the data, writes every sample and closes the entry.
  void writeData(std::span<const ChartEntryS> samples, PointSeparator separator = PointSeparator::comma);

 private:
  PerfJSONWriter& _writer;
  bool _started = false;
};
