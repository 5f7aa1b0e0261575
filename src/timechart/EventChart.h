#pragma once

#include <string>

#include "timechart/ChartEvents.h"

class PerfJSONWriter;

/// The one system-wide list of trace markers. Each marker is also in the chart of the process that wrote it.
class EventChart {
 public:
  /// Adds a marker; its time is in seconds of the ftrace text.
  void addEvent(double time, unsigned int code, const std::string& name, const std::string& args);
  /// Writes nothing if there are no markers.
  void outEventChart(PerfJSONWriter& writer) const;

 private:
  ChartEvents _events;
};
