#pragma once

#include <string>
#include <vector>

class PerfJSONWriter;

/// One trace marker.
struct EventEntryS {
  double time;        ///< seconds relative to gtodAtStart
  unsigned int code;  ///< the marker's number
  std::string name;
  std::string args;  ///< the rest of the marker's text
};

/// Trace markers in order of arrival; never sorted.
class ChartEvents {
 public:
  /// Adds a marker if its time, in seconds of the ftrace text, is in the selected range.
  void add(double seconds, unsigned int code, const std::string& name, const std::string& args);
  bool empty() const { return _events.empty(); }
  /// Writes the array "data" of an entry: time, code, name and arguments of each marker.
  void writeData(PerfJSONWriter& writer) const;

 private:
  std::vector<EventEntryS> _events;
};
