#include "verbs/Source.h"

#include <fstream>
#include <sstream>

namespace zelkit {

namespace {

MachineIdentity identityOf(const RecordingInfo& info) {
  const auto kernel = info.buildIds.find(RecordingInfo::kKernel);
  return {info.hostName, info.kernelRelease, kernel != info.buildIds.end() ? kernel->second : ""};
}

/// Returns whether a kernel's table has the symbol at the address, which changes with each boot.
bool hasSymbol(const std::string& tablePath, const std::string& symbol, std::uint64_t address) {
  std::ifstream table(tablePath);
  std::uint64_t found = 0;
  std::string type;
  std::string name;
  for (std::string line; std::getline(table, line);) {
    std::istringstream fields(line);
    if (fields >> std::hex >> found >> type >> name && name == symbol) return found == address;
  }
  return false;
}

}  // namespace

Source::Source(const std::string& path) : _files(filesOf(path)) {
  if (Capture::isCapture(path)) {
    _capture = std::make_unique<Capture>(path);
    if (!_capture->damage().empty()) _notes.push_back(_capture->damage());
  }
  _recording = std::make_unique<Recording>(_capture ? _capture->recording() : path);
  _recording->callIt(shown(_recording->path()));
  const MachineIdentity recorded = identityOf(_recording->info());
  const MachineIdentity here = MachineIdentity::here();
  _madeHere = !_capture && !recorded.hostName.empty() && recorded.hostName == here.hostName &&
              recorded.kernelRelease == here.kernelRelease;
}

std::vector<std::string> Source::filesOf(const std::string& path) {
  std::vector<std::string> files = {path};
  for (const char* name : {"perf.data", "kallsyms", "softirqs", "uptime", "trace"})
    files.push_back(path + '/' + name);
  return files;
}

/// Compares the build-ids, or, if perf stored none (compressed recordings, pipe mode), the addresses of the
/// kernel.
bool Source::isOfRunningKernel(const Survey& survey) const {
  const MachineIdentity recorded = identityOf(_recording->info());
  const MachineIdentity here = MachineIdentity::here();
  if (recorded.agreesWith(here)) return true;
  return _madeHere && recorded.kernelBuildId.empty() && !survey.kernelSymbol.empty() &&
         hasSymbol(MachineFolder::here().kernelSymbols, survey.kernelSymbol, survey.kernelSymbolAddress);
}

void Source::chooseMachine(const std::string& folder, const Survey& survey) {
  if (!folder.empty()) {
    _machine = MachineFolder::of(folder);
    for (const std::string& file : filesOf(folder)) _files.push_back(file);
  } else if (_capture) {
    _machine = _capture->machine();
  } else if (isOfRunningKernel(survey)) {
    _machine = MachineFolder::here();
  } else {
    _notes.emplace_back(
        "the kernel's symbols, interrupt names and markers are left out: the recording is not known to be of "
        "this "
        "machine and its running kernel; name a folder with its kallsyms, softirqs, uptime and trace by "
        "--machine");
  }
  for (const std::string& missing : _machine.missing) _notes.push_back(shown(missing));
  chooseRoots(folder);
}

void Source::chooseRoots(const std::string& folder) {
  if (!folder.empty() && _machine.root.empty()) _machine.root = MachineFolder::of(folder).root;
  if (_capture && _machine.root.empty()) _machine.root = _capture->machine().root;
  if (!_machine.root.empty()) _roots.push_back(_machine.root);
  if (_madeHere && folder.empty() && _machine.root != "/") _roots.emplace_back("/");
}

}  // namespace zelkit
