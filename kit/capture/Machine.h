/// The machine that made a recording: its identity, and the files of it that a conversion reads.
#pragma once

#include <string>
#include <vector>

namespace zelkit {

/// Paths of the files of a machine, empty if there is none.
struct MachineFolder {
  std::string kernelSymbols;   ///< text of /proc/kallsyms, addresses not hidden
  std::string softInterrupts;  ///< text of /proc/softirqs
  std::string uptime;          ///< text of /proc/uptime
  std::string traceText;       ///< text of the ftrace buffer
  std::string root;            ///< the folder that holds the machine's files at their own paths
  std::string boot;            ///< identity of the running kernel's boot; empty for another machine
  /// One line for each missing file that would change a document: which, and how to provide it.
  std::vector<std::string> missing;

  /// Returns those of "kallsyms", "softirqs", "uptime", "trace" and "files" that are in a folder. Throws
  /// std::runtime_error with "FOLDER: reason" if it cannot be read as a folder.
  static MachineFolder of(const std::string& folder);

  /// Returns the files of the machine that zelkit runs on, with "/" as its root. Usable for a recording only
  /// if it was made here, see MachineIdentity.
  static MachineFolder here();
};

/// Identity of a machine and its kernel. Empty texts are unknown.
struct MachineIdentity {
  std::string hostName;
  std::string kernelRelease;
  std::string kernelBuildId;  ///< lower-case hexadecimal digits

  /// Returns the identity of this machine.
  static MachineIdentity here();

  /// Returns whether both are certainly the same machine and kernel: all three members are known and equal.
  [[nodiscard]] bool agreesWith(const MachineIdentity& other) const;
};

}  // namespace zelkit
