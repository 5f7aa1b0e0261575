#pragma once

class PerfJSONWriter;

/// The one object that the timechart is built around.
class TimechartManager {
 public:
  static TimechartManager* Instance();

  /// Writes the whole timechart document.
  void writeData(PerfJSONWriter& writer);

 private:
  TimechartManager() = default;

  static TimechartManager* _instance;
};
