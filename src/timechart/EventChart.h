#pragma once

#include <string>

#include "timechart/ChartEvents.h"

class PerfJSONWriter;

/// The one system-wide list of trace markers. Each of them is also in the chart of the process that wrote it.
class EventChart {
 public:
  void addEvent(double time, unsigned int code, const std::string& name, const std::string& args);
  /// Nothing at all without a marker.
  void outEventChart(PerfJSONWriter& writer) const;

 private:
  ChartEvents _events;
};
