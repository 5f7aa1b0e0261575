#include "timechart/TimechartManager.h"

#include "json/PerfJSONWriter.h"

TimechartManager* TimechartManager::_instance = nullptr;

TimechartManager* TimechartManager::Instance() {
  if (_instance == nullptr) _instance = new TimechartManager;
  return _instance;
}

void TimechartManager::writeData(PerfJSONWriter& writer) {
  writer.writeStructStart();
  writer.writeArrayStart("entries");
  writer.writeArrayEnd();
  writer.writeStructEnd();
}
