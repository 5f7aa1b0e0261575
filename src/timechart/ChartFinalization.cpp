// The part of TimechartManager that reads names which records do not contain: those of soft interrupts, from
// the machine, and those of hardware counters, from the capture's configuration.

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "base/LineReader.h"
#include "base/MachineFiles.h"
#include "json/JSOM.h"
#include "run/Settings.h"
#include "timechart/TimechartManager.h"

namespace {

using loomstat::JSOM;

// Values of "event_type" for the groups of counters.
constexpr long long kL1Group = 4;
constexpr long long kL2Group = 6;

std::string environmentOr(const char* variable, const char* otherwise) {
  const char* value = std::getenv(variable);
  return value != nullptr ? value : otherwise;
}

/// Developers' builds of the capture have no counters of the second level.
bool hasL2Counters() {
  const char* build = std::getenv("BUILD_TYPE");
  return build != nullptr && std::strcmp(build, "developer") != 0;
}

/// Reads a counter code from each line. Returns false at an empty line or the end of the file.
template <std::size_t Count>
bool readCodes(LineReader& file, std::array<std::string, Count>& names) {
  std::string line;
  for (std::string& name : names) {
    file.next(line);
    if (line.empty()) return false;
    name = line;
    if (!file.good()) return false;
  }
  return true;
}

template <std::size_t Count>
void translate(std::array<std::string, Count>& names, const char* group, const std::string& code,
               const std::string& name) {
  for (std::size_t i = 0; i < Count; ++i) {
    if (names[i] != code) continue;
    names[i] = name;
    if (verbose())
      std::printf("%s[%u] %s => %s\n", group, static_cast<unsigned int>(i), code.c_str(), name.c_str());
  }
}

}  // namespace

void TimechartManager::finalizeChartData() {
  readSoftInterruptNames();
  if (readActiveCounters()) translateCounterNames();
}

/// A header line, then a line for each vector, in order, that begins with its name and a colon.
void TimechartManager::readSoftInterruptNames() {
  LineReader file(gMachineFiles.softInterrupts);
  if (!file.isOpen()) {
    std::fprintf(stderr, "Error: /proc/softirqs doesn't exist.\n");
    return;
  }
  std::string line;
  if (!file.next(line)) return;
  for (int vector = 0; file.next(line) && !line.empty(); ++vector) {
    const std::size_t start = std::min(line.find_first_not_of(' '), line.size());
    addSirqName(vector, line.substr(start, line.find_first_of(": ", start) - start));
  }
}

/// Reads one code per line: that of the cycle counter, an ignored line, the four of the first level, an
/// ignored line, and the two of the second level. Returns false if there is no such file.
bool TimechartManager::readActiveCounters() {
  _cycleCounterName = kUnusedCounter;
  _l1CounterNames.fill(kUnusedCounter);
  _l2CounterNames.fill(kUnusedCounter);
  LineReader file(environmentOr("ZELVIEW_CONFIG", "/opt/zelview/config/") + "/plotx/activeCounters");
  if (!file.isOpen()) return false;
  std::string passedOver;
  file.next(_cycleCounterName);
  file.next(passedOver);
  if (file.good() && readCodes(file, _l1CounterNames)) file.next(passedOver);
  if (file.good() && hasL2Counters()) readCodes(file, _l2CounterNames);
  return true;
}

/// Replaces codes by the display names of the counter-types file. The cycle counter keeps its code.
void TimechartManager::translateCounterNames() {
  JSOM document;
  document.fromFile(
      (environmentOr("DOCUMENT_ROOT", "/opt/zelview/www/") + "/configx/cfgx-types.json").c_str());
  JSOM items = document["items"];
  for (int i = 0; i < items.size(); ++i) {
    JSOM item = items[i];
    JSOM info = item["info"];
    if (!info.found()) continue;
    const JSOM rawCode = info["raw perf code"];
    if (!rawCode.found()) continue;
    std::string code = rawCode.stringValue(JSOM::EMPTY_STRING);
    for (char& c : code) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    const long long group = item["inputs"][0]["event_type"].longValue(0);
    const std::string name = item["name"].stringValue(JSOM::EMPTY_STRING);
    if (group == kL1Group) translate(_l1CounterNames, "l1", code, name);
    if (group == kL2Group) translate(_l2CounterNames, "l2", code, name);
  }
}
