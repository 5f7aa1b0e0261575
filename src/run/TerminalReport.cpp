#include "run/TerminalReport.h"

#include <sys/stat.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <map>
#include <vector>

#include "base/MachineFiles.h"
#include "base/TargetNumbers.h"
#include "events/PerfRecordSampleEvent.h"
#include "records/PerfFactory.h"
#include "records/PerfRecordSample.h"
#include "records/SampleLayout.h"
#include "run/Settings.h"
#include "symbols/SymbolTable.h"

namespace {

constexpr std::size_t kMostListed = 4;

/// Returns the text with control characters replaced, as names in a recording may contain commands for the
/// terminal.
std::string printable(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    // In UTF-8, C2 starts the control characters U+0080 to U+009F.
    const bool isControl =
        byte < 0x20 || byte == 0x7F ||
        (byte == 0xC2 && i + 1 < text.size() && static_cast<unsigned char>(text[i + 1]) < 0xA0);
    result += isControl ? '?' : text[i];
  }
  return result;
}

std::string counted(std::uint64_t count, const char* what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string share(std::uint64_t part, std::uint64_t whole) {
  char text[16];
  std::snprintf(text, sizeof text, "%.1f %%", 100.0 * static_cast<double>(part) / static_cast<double>(whole));
  return text;
}

bool isSameFile(const std::string& one, const std::string& other) {
  struct stat first = {};
  struct stat second = {};
  return stat(one.c_str(), &first) == 0 && stat(other.c_str(), &second) == 0 && S_ISREG(first.st_mode) &&
         first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

/// Returns the version in the form of kern_ver, 100 times the major one plus the minor one, or 0.
int versionOf(const std::string& release) {
  const char* point = nullptr;
  const int major = targetStrtol(release.c_str(), &point);
  return *point == '.' && major > 0 && major < 1000 ? 100 * major + targetStrtol(point + 1) % 100 : 0;
}

std::string versionText(int version) {
  return std::to_string(version / 100) + "." + std::to_string(version % 100);
}

/// Returns whether a machine of that architecture, as uname names it, has a 64-bit kernel.
bool isWide(const std::string& architecture) {
  return architecture.find("64") != std::string::npos || architecture == "armv8l" || architecture == "s390x";
}

std::string nameOf(const std::vector<RecordedEvent>& events, std::size_t index) {
  const std::string& name = events[index].name;
  return name.empty() ? "event " + std::to_string(index + 1) : printable(name);
}

/// Returns the first texts, separated by commas, and how many more there are.
std::string listed(const std::vector<std::string>& texts, std::size_t most) {
  std::string list;
  for (std::size_t i = 0; i < texts.size() && i < most; ++i) {
    if (i > 0) list += ", ";
    list += texts[i];
  }
  if (texts.size() > most) list += " and " + std::to_string(texts.size() - most) + " more";
  return list;
}

}  // namespace

TerminalReport::TerminalReport(bool speaks) : _speaks(speaks) {}

TerminalReport::~TerminalReport() {
  stopWatching();
}

bool TerminalReport::isTerminal() {
  return isatty(STDERR_FILENO) == 1;
}

void TerminalReport::say(const std::string& line) {
  if (!_speaks) return;
  _line.clear();
  std::fprintf(stderr, "zelconv: %s\n", line.c_str());
}

void TerminalReport::sayOfRecording(const std::string& text) {
  say(printable(inFileName) + ": " + text);
}

void TerminalReport::tellIgnored(std::span<char* const> words) {
  std::string text = "ignored:";
  for (const char* word : words) text += " " + printable(word);
  say(text + " (-i names the recording, -o the document)");
}

void TerminalReport::inspectFiles() {
  if (!_speaks) return;
  if (isSameFile(inFileName, outFileName))
    sayOfRecording("is the recording and the document too: it is emptied before it is read");
  _facts = readRecordingFacts(inFileName);
  if (!_facts || _facts->fileSize == 0) return;
  tellFormat();
  if (_facts->format != RecordingFacts::Format::recording) return;
  if (_facts->missingBytes > 0)
    sayOfRecording("is truncated: " + counted(_facts->missingBytes, "byte") + " of its data missing");
  if (_facts->isCompressed) sayOfRecording("its records are compressed, and none of those is read");
  tellSampleFields();
  gTimechartMode ? tellKernel() : tellKernelNames();
}

void TerminalReport::tellFormat() {
  const char* fault = nullptr;
  switch (_facts->format) {
    case RecordingFacts::Format::recording:
      return;
    case RecordingFacts::Format::pipe:
      fault = "was recorded into a pipe, and only recordings made into a file are understood";
      break;
    case RecordingFacts::Format::otherByteOrder:
      fault = "was recorded on a machine of the other byte order";
      break;
    case RecordingFacts::Format::unknown:
      fault = "is not a recording of perf, as it does not start with PERFILE2";
      break;
  }
  sayOfRecording(std::string(fault) + ": the run will probably abort and leave " + printable(outFileName) +
                 " empty");
}

void TerminalReport::tellSampleFields() {
  std::map<std::string, std::vector<std::string>> eventsByFault;
  std::size_t sampling = 0;
  bool hasTracePoints = false;
  for (std::size_t i = 0; i < _facts->events.size(); ++i) {
    const RecordedEvent& event = _facts->events[i];
    if (hasNoSamples(event)) continue;
    ++sampling;
    hasTracePoints = hasTracePoints || isTracePoint(event);
    if (event.sampleType == 0) continue;  // perf always asks for some field: the header does not say which
    if (const std::string fault = misplacedField(event); !fault.empty())
      eventsByFault[sampleFields(event.sampleType) + ": " + fault].push_back(nameOf(_facts->events, i));
  }
  std::size_t faults = 0;
  for (const auto& [fault, events] : eventsByFault) {
    if (++faults > kMostListed) break;  // no recorder makes so many
    sayOfRecording((events.size() == sampling ? "its samples" : "samples of " + listed(events, kMostListed)) +
                   " hold " + fault + "; they come out wrong or not at all");
  }
  if (hasTracePoints && !_facts->hasEventTable)
    sayOfRecording("has no table of event names before its data: no trace-point is decoded");
}

/// Only the layouts of trace-points depend on the recorded kernel.
void TerminalReport::tellKernel() {
  const int version = versionOf(_facts->release);
  const bool wide = isWide(_facts->architecture);
  std::string remedy;
  if (version != 0 && version != kern_ver) remedy += " kern_ver=" + versionText(version);
  if (!_facts->architecture.empty() && wide != is64) remedy += wide ? " ARM64=y" : " ARM64=";
  if (remedy.empty()) return;
  sayOfRecording("was recorded on kernel " + printable(_facts->release) + " (" +
                 printable(_facts->architecture) + ") and is decoded as " + versionText(kern_ver) +
                 (is64 ? " of 64 bits" : " of 32 bits") + ": set" + remedy);
}

void TerminalReport::tellKernelNames() {
  // One symbol, the page of interrupt vectors, does not come from the file.
  if (SymbolTable::_kernelSymTable->elements().size() < 2)
    return say(gMachineFiles.kernelSymbols +
               " shows no addresses to this user: functions of the kernel have no names");
  utsname machine{};
  const bool isOwn = gMachineFiles.kernelSymbols == MachineFiles().kernelSymbols && uname(&machine) == 0;
  if (isOwn && !_facts->release.empty() && _facts->release != machine.release)
    sayOfRecording("was recorded on kernel " + printable(_facts->release) +
                   ", and functions of the kernel get the names of this machine's, " + machine.release);
}

void TerminalReport::tellUnreadable(int error) {
  sayOfRecording(error != 0 ? std::strerror(error) : "is empty");
}

void TerminalReport::tellUnwritable(int error) {
  if (error == 0 || _saidUnwritable) return;
  _saidUnwritable = true;
  say(printable(outFileName) + ": cannot be written: " + std::strerror(error));
}

void TerminalReport::watch() {
  if (!_speaks) return;
  _line = ProgressLine();
  _current = this;
  if (_facts) PerfFactory::_losses.dataEnd = _facts->dataEnd;
}

void TerminalReport::stopWatching() {
  _current = nullptr;
  _line.clear();
}

std::string TerminalReport::progress(const char* file) {
  std::string text = "zelconv: ";
  if (_facts && _facts->fileSize > 0) text += std::to_string(100 * _offset / _facts->fileSize) + " % ";
  text += "read";
  if (file == nullptr) return text;
  text += ", nm " + std::to_string(_filesWanted);
  if (!_allFiles) _allFiles = _facts ? countMappedFiles(inFileName, *_facts) : 0;
  if (*_allFiles >= _filesWanted) text += " of " + std::to_string(*_allFiles);
  return text + ": " + printable(file);
}

void TerminalReport::recordingRead(unsigned long long offset) {
  _offset = offset;
  if (_line.due() == 0) _line.show(progress(nullptr));
}

void TerminalReport::symbolsWanted(const char* file) {
  if (!mappedFile(file).empty()) ++_filesWanted;
}

void TerminalReport::nmAwaited(const char* path) {
  if (_line.due() == 0) _line.show(progress(path));
}

void TerminalReport::nmNotStarted(int error) {
  if (error == _nmError) return;
  _nmError = error;
  say(std::string("nm: ") + std::strerror(error) + ": functions of programs and libraries have no names");
}

void TerminalReport::symbolsRead(const char* path, std::size_t count) {
  ++_filesRead;
  if (count > 0) return;
  if (_filesWithoutSymbols++ == 0) _firstWithoutSymbols = path;
}

void TerminalReport::countSamples() {
  if (_speaks) _samplesWithoutFunction = PerfRecordSample::countWithoutFunction();
}

void TerminalReport::summarize() {
  if (!_speaks) return;
  const unsigned long long tracePoints = PerfRecordSampleEvent::count();
  const unsigned long long plain = PerfRecordSample::count() - tracePoints;
  const unsigned long long kept = gTimechartMode ? 0 : plain;
  std::string text = counted(kept, "sample") + " kept";
  if (kept > 0) text += " (" + share(_samplesWithoutFunction, kept) + " without a function name)";
  text += ", " + counted(tracePoints, "trace-point") + " decoded, " +
          counted(PerfFactory::_losses.bytes, "byte") + " lost, " +
          counted(PerfFactory::_losses.lostByKernel, "sample") + " lost by the kernel";
  sayOfRecording(text);
  tellPassedOver();
  tellWithoutSymbols();
  tellOtherMode(plain, tracePoints);
}

void TerminalReport::tellPassedOver() {
  const RecordLosses& losses = PerfFactory::_losses;
  std::vector<std::string> counts;
  for (std::uint32_t type = 0; type < RecordLosses::kTypes; ++type)
    if (losses.passedOver[type] != 0)
      counts.push_back(std::to_string(losses.passedOver[type]).append(" ").append(recordTypeName(type)));
  if (!counts.empty()) sayOfRecording("records passed over: " + listed(counts, RecordLosses::kTypes));
  if (losses.longRecords == 0) return;
  std::string text = counted(losses.longRecords, "record") + " of more than 256 bytes lost";
  if (losses.longSamples > 0)
    text.append(", ").append(std::to_string(losses.longSamples)).append(" of them SAMPLE");
  if (losses.longSamples > 0 && !gTimechartMode) text += " (no back-trace of more than 25 fits)";
  sayOfRecording(text);
}

void TerminalReport::tellWithoutSymbols() {
  if (_filesWithoutSymbols == 0) return;
  say("nm lists no symbols of " + std::to_string(_filesWithoutSymbols) + " of " +
      counted(_filesRead, "file") + ", such as " + printable(_firstWithoutSymbols) +
      ": -p names a folder with unstripped copies");
}

void TerminalReport::tellOtherMode(unsigned long long plainSamples, unsigned long long tracePoints) {
  if (gTimechartMode && tracePoints == 0 && plainSamples > 0)
    sayOfRecording("all samples are those of a profile: convert it without -t");
  if (!gTimechartMode && plainSamples == 0 && tracePoints > 0)
    sayOfRecording("all samples are trace-points: convert it with -t");
}
