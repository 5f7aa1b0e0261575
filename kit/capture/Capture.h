/// The files that zelcapture collected on a device: a folder, or a tar of it.
#pragma once

#include <memory>
#include <string>

#include "capture/Machine.h"
#include "capture/TemporaryFolder.h"

namespace zelkit {

/// An opened capture. Its files, of which only the first is required:
///
/// - perf.data: the recording
/// - kallsyms, softirqs, uptime, trace: texts of the device's kernel
/// - uname: what "uname -a" printed
/// - files/PATH: the device's file PATH, such as a library or /tmp/perf-PID.map
/// - names: paths of the files that samples touched, one a line
class Capture {
 public:
  /// Returns whether the path names a capture and not a recording: a folder, or a tar, plain or compressed.
  static bool isCapture(const std::string& path);

  /// Opens a capture; a tar is unpacked into a temporary folder, which is removed with the object. Throws
  /// std::runtime_error with "PATH: reason": no "perf.data" in it, or a tar that unpackTar refuses.
  explicit Capture(const std::string& path);

  /// The perf.data file.
  [[nodiscard]] std::string recording() const { return _folder + "/perf.data"; }
  [[nodiscard]] const MachineFolder& machine() const { return _machine; }
  /// Returns the text with the paths of unpacked files as "TAR:PATH".
  [[nodiscard]] std::string shown(std::string text) const;
  /// Returns what "uname -a" printed on the device, without its line end; empty if unknown.
  [[nodiscard]] const std::string& uname() const { return _uname; }
  /// Returns one line about where a damaged tar breaks off; empty for an intact one. The files before the
  /// damage are unpacked.
  [[nodiscard]] const std::string& damage() const { return _damage; }

 private:
  std::string _path;
  std::unique_ptr<TemporaryFolder> _unpacked;  ///< null for a folder of the user
  std::string _folder;
  std::string _damage;
  MachineFolder _machine;
  std::string _uname;
};

}  // namespace zelkit
