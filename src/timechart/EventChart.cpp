#include "timechart/EventChart.h"

#include "json/PerfJSONWriter.h"
#include "timechart/ChartEntry.h"

void EventChart::addEvent(double time, unsigned int code, const std::string& name, const std::string& args) {
  _events.add(time, code, name, args);
}

void EventChart::outEventChart(PerfJSONWriter& writer) const {
  if (_events.empty()) return;
  ChartEntry entry(writer);
  entry.text("id", "evt").text("name", "FTrace Events").text("treeId", "evt_root").text("type", "events");
  entry.text("class", "proc:events").text("tip", "FTrace Events").show(1).hints({"#cd5c5c", "#cd5c5c"});
  _events.writeData(writer);
  writer.writeStructEnd();
}
