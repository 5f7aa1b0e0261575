#pragma once

#include <memory>
#include <string>
#include <vector>

#include "capture/Capture.h"
#include "capture/Machine.h"
#include "recording/Recording.h"

namespace zelkit {

/// What a verb is asked to work on: a recording, or a capture of a device with a recording in it.
class Source {
 public:
  /// `machineFolder`: where the files of the machine lie that made the recording; empty if the user named
  /// none. Throws std::runtime_error with "PATH: reason".
  Source(const std::string& path, const std::string& machineFolder);

  [[nodiscard]] Recording& recording() { return *_recording; }
  /// The files of the machine that made the recording: those that the user named, the capture's, or this
  /// machine's if the recording was made here by the kernel that runs now; else none.
  [[nodiscard]] const MachineFolder& machine() const { return _machine; }
  /// Where programs and libraries of that machine are looked for, after the user's own folders.
  [[nodiscard]] const std::vector<std::string>& roots() const { return _roots; }
  /// What is missing or was damaged and changes a document, a line each.
  [[nodiscard]] const std::vector<std::string>& notes() const { return _notes; }

 private:
  void chooseMachine(const std::string& machineFolder);

  std::unique_ptr<Capture> _capture;
  std::unique_ptr<Recording> _recording;
  MachineFolder _machine;
  std::vector<std::string> _roots;
  std::vector<std::string> _notes;
};

}  // namespace zelkit
