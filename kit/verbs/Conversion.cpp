#include "verbs/Conversion.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

#include "base/MachineFiles.h"
#include "document/LayoutFile.h"
#include "document/NewFile.h"
#include "document/OutputFile.h"
#include "layout/Layout.h"
#include "run/Settings.h"
#include "verbs/ChildProcess.h"
#include "verbs/EngineRecords.h"
#include "verbs/KernelSymbols.h"
#include "verbs/Names.h"
#include "verbs/Progress.h"
#include "verbs/Report.h"

namespace zelkit {

Status Conversion::make(Kind kind, const std::string& output, std::string& report) {
  const std::string layoutPath = LayoutFile::pathOf(output);
  NewFile document(output, _source.files());
  NewFile layout(layoutPath, _source.files());
  const int status = inChildProcess(
      [&](std::string& result) { runEngine(kind, output, document.path(), layout.path(), result); }, report);
  if (status != 0) return status == kEngineUsage ? Status::kUsage : Status::kUnreadable;
  document.commit();
  if (kind == Kind::profile) layout.commit();
  return Status::kDone;
}

void Conversion::runEngine(Kind kind, const std::string& output, const std::string& document,
                           const std::string& layoutPath, std::string& report) {
  Recording& recording = _source.recording();
  Names names(_source, _request.symbolFolders);
  OldFile::EventTable events;
  LayoutChoice choice;
  choice.depth = _request.depth;
  choice.kernelStart = kernelStartOf(recording.info(), _survey.kernelMapping);
  if (kind == Kind::profile) {
    choice.event = _choice.event;
    choice.countsNames = true;
  } else {
    for (const OldPayloads::TableEntry& entry : _payloads.table())
      events.emplace_back(entry.number, entry.name);
    choice.payloads = [this](const Sample& sample, std::uint16_t& number, std::string& raw) {
      return _payloads.make(sample.event, sample.raw, number, raw);
    };
  }
  Layout* layout = nullptr;
  EngineRecords records(events, [&] { recording.walk(*layout, progressLine("reading")); });
  Layout made(recording.info(), choice, kind == Kind::profile ? &names : nullptr, records);
  layout = &made;
  pointEngineAtMachine();
  gMachineFiles.symbolSource = [&](const char* name) -> std::unique_ptr<SymbolSource> {
    if (gMachineFiles.kernelSymbols == name) return names.kernelSource(choice.kernelStart);
    const MappedFile* file = made.files().find(name);
    return file != nullptr ? names.sourceOf(*file) : nullptr;
  };
  if (const int error = callEngine(kind, document, records); error != 0)
    throw std::runtime_error(output + ": " + std::strerror(error));
  Outcome outcome{output, made.account(), made.files(), choice.depth, _source.notes()};
  outcome.notes.insert(outcome.notes.end(), _choice.notes.begin(), _choice.notes.end());
  for (const std::string& note : names.notes()) outcome.notes.push_back(_source.shown(note));
  if (kind == Kind::profile) {
    OutputFile file(layoutPath);
    file.write(layoutJson(outcome));
    file.commit();
  }
  std::fputs(reportText(recording, outcome).c_str(), stderr);
  report = reportJson(recording, outcome);
}

/// The engine reads files of the recording's machine, or none.
void Conversion::pointEngineAtMachine() const {
  const MachineFolder& machine = _source.machine();
  // An empty file rather than none: the engine would complain.
  gMachineFiles.softInterrupts = machine.softInterrupts.empty() ? "/dev/null" : machine.softInterrupts;
  gMachineFiles.uptime = machine.uptime;
  gMachineFiles.traceText = machine.traceText;
  // A name that no file has: it marks the engine's request for the kernel's symbols.
  gMachineFiles.kernelSymbols = "[kernel]";
  gDeepestTrace = static_cast<unsigned int>(_request.depth);
  // Payloads of trace-points are rewritten for this kernel.
  setenv("kern_ver", "3.10", 1);
  unsetenv("ARM64");
}

/// Returns 0, or the errno of what kept the document from being written.
int Conversion::callEngine(Kind kind, const std::string& document, EngineRecords& records) const {
  // Times of the recording's own clock, so that all documents of a recording share one axis.
  std::vector<std::string> words = {"zelconv", "-o", document, "-b", "0.001"};
  if (kind == Kind::timechart) words.emplace_back("-t");
  words.insert(words.end(), _request.engineOptions.begin(), _request.engineOptions.end());
  std::vector<char*> arguments;
  arguments.reserve(words.size() + 1);
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  return profile(static_cast<int>(words.size()), arguments.data(), records);
}

}  // namespace zelkit
