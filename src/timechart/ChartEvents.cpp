#include "timechart/ChartEvents.h"

#include "json/PerfJSONWriter.h"
#include "timechart/ChartTime.h"

void ChartEvents::add(double seconds, unsigned int code, const std::string& name, const std::string& args) {
  if (const auto time = ChartTime::ofMarker(seconds); time.isSelected())
    _events.push_back({time.seconds(), code, name, args});
}

void ChartEvents::writeData(PerfJSONWriter& writer) const {
  writer.writeArrayStart("data");
  for (const EventEntryS& event : _events) {
    writer.writeArrayStart(nullptr);
    writer.write(event.time);
    writer.write(event.code);
    writer.write(event.name);
    writer.write(event.args);
    writer.writeArrayEnd();
  }
  writer.writeArrayEnd();
}
