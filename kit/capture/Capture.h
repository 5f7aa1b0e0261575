/// What zelcapture gathered on a device: a folder, or a tar of it.
#pragma once

#include <string>

namespace zelkit {

/// The files of a machine that a conversion reads; each is empty if there is none.
struct MachineFolder {
  std::string kernelSymbols;   ///< text of /proc/kallsyms
  std::string softInterrupts;  ///< text of /proc/softirqs
  std::string uptime;          ///< text of /proc/uptime
  std::string traceText;       ///< text of the ftrace buffer
  std::string root;            ///< the folder that holds the machine's files at their own paths

  /// Returns what a folder holds: "kallsyms", "softirqs", "uptime", "trace" and "files". Throws
  /// std::runtime_error with "FOLDER: reason" if it is no folder that can be read.
  static MachineFolder of(const std::string& folder);
};

/// Who made a recording, or this machine. Empty texts are unknown.
struct MachineIdentity {
  std::string hostName;
  std::string kernelRelease;
  std::string kernelBuildId;  ///< lower-case hexadecimal

  /// Returns this machine's own.
  static MachineIdentity here();

  /// Whether both are one machine with one kernel: host name and release agree, and the build-ids are known
  /// and agree.
  [[nodiscard]] bool agreesWith(const MachineIdentity& other) const;
};

/// Returns the files of the machine that zelkit runs on, "/" as its root. A kernel table whose addresses are
/// hidden is left out, and `hidden` then says what to do about it.
MachineFolder thisMachine(std::string& hidden);

/// An opened capture. A tar is unpacked into a folder of its own, which is removed with the object.
class Capture {
 public:
  /// Whether the path names a capture rather than a recording: a folder, or a tar, compressed by gzip or zstd
  /// or not.
  static bool isCapture(const std::string& path);

  /// Opens it. Throws std::runtime_error with "PATH: reason": no "perf.data" in it, or a tar with an entry
  /// that is neither a file nor a folder (links, devices), or whose name is absolute or leads out of the
  /// folder. Nothing of such a tar is kept.
  explicit Capture(const std::string& path);
  ~Capture();
  Capture(const Capture&) = delete;
  Capture& operator=(const Capture&) = delete;

  [[nodiscard]] const std::string& folder() const { return _folder; }
  /// The perf.data file.
  [[nodiscard]] std::string recording() const { return _folder + "/perf.data"; }
  [[nodiscard]] const MachineFolder& machine() const { return _machine; }
  /// Text of "uname -a" on the device, without its line end; empty if the capture has none.
  [[nodiscard]] const std::string& uname() const { return _uname; }

 private:
  std::string _folder;
  std::string _unpacked;  ///< what to remove, empty for a folder of the user's own
  MachineFolder _machine;
  std::string _uname;
};

}  // namespace zelkit
