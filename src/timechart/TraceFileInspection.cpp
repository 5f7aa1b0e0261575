// The part of TimechartManager that finds application markers in the ftrace text.
//
// A marker line, of which only the named parts matter:
//
//     <...>-PID  CPU-AND-FLAGS TIME: tracing_mark_write: ZVIEW,CODE,NAME,ARGS

#include <cstdlib>
#include <optional>
#include <string>

#include "base/LineReader.h"
#include "base/MachineFiles.h"
#include "base/TargetNumbers.h"
#include "timechart/TimechartManager.h"

namespace {

const std::string kEvent = "tracing_mark_write: ";
const std::string kToken = "ZVIEW";

struct Marker {
  double time;
  int pid;
  unsigned int code;
  std::string name;
  std::string args;
};

/// Returns the marker in a line, or nothing. Invalid numbers count as 0.
std::optional<Marker> markerIn(const std::string& line) {
  const std::size_t event = line.find(kEvent);
  if (event == std::string::npos || line.find(kToken) == std::string::npos) return std::nullopt;

  // A task whose name the trace has dropped ends in ">-". Of any other line the pid is read from its second
  // character on, where usually is none; documents have always had those markers under process 0.
  const std::size_t arrow = line.find(">-");
  const std::size_t pid = arrow == std::string::npos ? 1 : arrow + 2;
  const std::string pidText = line.substr(pid, line.find(' ', pid) - pid);
  const std::size_t colon = line.find(':', pid);
  const std::size_t time = line.rfind(' ', colon) + 1;
  const std::string timeText = line.substr(time, colon - time);

  const std::string payload = line.substr(event + kEvent.size());
  const std::size_t code = payload.find(',') + 1;
  const std::size_t codeEnd = payload.find(',', code);
  if (codeEnd == std::string::npos) return std::nullopt;
  const std::size_t nameEnd = payload.find(',', codeEnd + 1);
  if (nameEnd == std::string::npos) return std::nullopt;
  return Marker{std::strtod(timeText.c_str(), nullptr), targetStrtol(pidText.c_str()),
                static_cast<unsigned int>(targetStrtol(payload.substr(code, codeEnd - code).c_str())),
                payload.substr(codeEnd + 1, nameEnd - codeEnd - 1), payload.substr(nameEnd + 1)};
}

}  // namespace

void TimechartManager::inspectTraceFile() {
  LineReader trace(gMachineFiles.traceText);
  for (std::string line; trace.next(line);)
    if (const auto marker = markerIn(line); marker)
      addEvent(marker->time, marker->pid, marker->code, marker->name, marker->args);
}
