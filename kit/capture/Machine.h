/// The kernel's side of a recording: which machine made it, and the files of that machine that a conversion
/// reads.
#pragma once

#include <string>
#include <vector>

namespace zelkit {

/// Paths of the files of a machine; each is empty if there is none.
struct MachineFolder {
  std::string kernelSymbols;   ///< text of /proc/kallsyms, addresses not hidden
  std::string softInterrupts;  ///< text of /proc/softirqs
  std::string uptime;          ///< text of /proc/uptime
  std::string traceText;       ///< text of the ftrace buffer
  std::string root;            ///< the folder that holds the machine's files at their own paths
  /// A line for each thing that is missing and would change a document: what, and what to do about it.
  std::vector<std::string> missing;

  /// Returns what a folder holds: "kallsyms", "softirqs", "uptime", "trace" and "files". Throws
  /// std::runtime_error with "FOLDER: reason" if it is no folder that can be read.
  static MachineFolder of(const std::string& folder);

  /// Returns the files of the machine that zelkit runs on, with "/" as its root. They belong to a recording
  /// only if it was made here, see MachineIdentity.
  static MachineFolder here();
};

/// Which machine and kernel. Empty texts are unknown.
struct MachineIdentity {
  std::string hostName;
  std::string kernelRelease;
  std::string kernelBuildId;  ///< lower-case hexadecimal digits

  /// Returns this machine's own.
  static MachineIdentity here();

  /// Whether both are surely one machine with one kernel: all three are known and agree.
  [[nodiscard]] bool agreesWith(const MachineIdentity& other) const;
};

}  // namespace zelkit
