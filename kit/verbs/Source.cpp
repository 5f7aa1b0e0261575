#include "verbs/Source.h"

namespace zelkit {

namespace {

MachineIdentity identityOf(const RecordingInfo& info) {
  const auto kernel = info.buildIds.find(RecordingInfo::kKernel);
  return {info.hostName, info.kernelRelease, kernel != info.buildIds.end() ? kernel->second : ""};
}

}  // namespace

Source::Source(const std::string& path, const std::string& machineFolder) {
  if (Capture::isCapture(path)) {
    _capture = std::make_unique<Capture>(path);
    if (!_capture->damage().empty()) _notes.push_back(_capture->damage());
  }
  _recording = std::make_unique<Recording>(_capture ? _capture->recording() : path);
  chooseMachine(machineFolder);
}

void Source::chooseMachine(const std::string& machineFolder) {
  const MachineIdentity recorded = identityOf(_recording->info());
  const MachineIdentity here = MachineIdentity::here();
  if (!machineFolder.empty()) {
    _machine = MachineFolder::of(machineFolder);
  } else if (_capture) {
    _machine = _capture->machine();
  } else if (recorded.agreesWith(here)) {
    _machine = MachineFolder::here();
  } else {
    _notes.push_back(
        "the kernel's symbols, interrupt names and markers are left out: the recording is not surely of this "
        "machine and its running kernel; name a folder with its kallsyms, softirqs, uptime and trace by "
        "--machine");
  }
  _notes.insert(_notes.end(), _machine.missing.begin(), _machine.missing.end());
  if (!_machine.root.empty()) _roots.push_back(_machine.root);
  const bool sameHost = !recorded.hostName.empty() && recorded.hostName == here.hostName &&
                        recorded.kernelRelease == here.kernelRelease;
  if (!_capture && machineFolder.empty() && sameHost && _machine.root != "/") _roots.emplace_back("/");
}

}  // namespace zelkit
