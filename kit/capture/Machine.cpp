#include "capture/Machine.h"

#include <sys/utsname.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "symbols/BuildId.h"

namespace zelkit {

namespace {

namespace fs = std::filesystem;

std::string readable(const std::string& path) {
  std::error_code error;
  return fs::is_regular_file(path, error) && access(path.c_str(), R_OK) == 0 ? path : "";
}

std::string textOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// Returns whether one of the first lines of a kernel table has an address other than 0. For users without
/// the right to see them all are 0.
bool showsAddresses(const std::string& path) {
  constexpr int kLinesToLookAt = 64;
  std::ifstream file(path);
  std::string line;
  for (int i = 0; i < kLinesToLookAt && std::getline(file, line); ++i)
    if (line.find_first_not_of('0') < line.find(' ')) return true;
  return false;
}

/// Drops a kernel table without addresses, and adds that to `missing`.
void checkKernelSymbols(MachineFolder& machine) {
  if (machine.kernelSymbols.empty()) {
    machine.missing.emplace_back("no kernel symbols: functions of the kernel have no names");
  } else if (!showsAddresses(machine.kernelSymbols)) {
    machine.missing.emplace_back(machine.kernelSymbols +
                                 ": kernel addresses are hidden; as root on the device, \"echo 0 > "
                                 "/proc/sys/kernel/kptr_restrict\" and read the table again");
    machine.kernelSymbols.clear();
  }
}

}  // namespace

MachineFolder MachineFolder::of(const std::string& folder) {
  std::error_code error;
  if (!fs::is_directory(folder, error) || access(folder.c_str(), R_OK | X_OK) != 0)
    throw std::runtime_error(folder + ": " + (error ? error.message() : "not a folder that can be read"));
  MachineFolder machine;
  machine.kernelSymbols = readable(folder + "/kallsyms");
  machine.softInterrupts = readable(folder + "/softirqs");
  machine.uptime = readable(folder + "/uptime");
  machine.traceText = readable(folder + "/trace");
  if (fs::is_directory(folder + "/files", error)) machine.root = folder + "/files";
  checkKernelSymbols(machine);
  return machine;
}

MachineFolder MachineFolder::here() {
  MachineFolder machine;
  machine.kernelSymbols = readable("/proc/kallsyms");
  machine.softInterrupts = readable("/proc/softirqs");
  machine.uptime = readable("/proc/uptime");
  machine.traceText = readable("/sys/kernel/tracing/trace");
  if (machine.traceText.empty()) machine.traceText = readable("/sys/kernel/debug/tracing/trace");
  machine.root = "/";
  machine.boot = textOf("/proc/sys/kernel/random/boot_id");
  machine.boot.erase(std::min(machine.boot.find('\n'), machine.boot.size()));
  checkKernelSymbols(machine);
  return machine;
}

MachineIdentity MachineIdentity::here() {
  MachineIdentity identity;
  utsname names{};
  if (uname(&names) == 0) {
    identity.hostName = names.nodename;
    identity.kernelRelease = names.release;
  }
  identity.kernelBuildId = buildIdInNotes(textOf("/sys/kernel/notes"));
  return identity;
}

bool MachineIdentity::agreesWith(const MachineIdentity& other) const {
  const auto agree = [](const std::string& a, const std::string& b) { return !a.empty() && a == b; };
  return agree(hostName, other.hostName) && agree(kernelRelease, other.kernelRelease) &&
         agree(kernelBuildId, other.kernelBuildId);
}

}  // namespace zelkit
