#pragma once

#include <memory>
#include <string>
#include <vector>

#include "capture/Capture.h"
#include "capture/Machine.h"
#include "recording/Recording.h"
#include "verbs/Survey.h"

namespace zelkit {

/// What a verb is asked to work on: a recording, or a capture of a device with a recording in it.
class Source {
 public:
  /// Throws std::runtime_error with "PATH: reason".
  explicit Source(const std::string& path);

  /// Chooses the files of the machine that made the recording: those below the user's folder, if he named
  /// one, the capture's, or this machine's if the recording was made here by the kernel that runs now; else
  /// none.
  void chooseMachine(const std::string& folder, const Survey& survey);
  /// Chooses folders for programs and libraries alone.
  void chooseRoots(const std::string& folder);

  [[nodiscard]] Recording& recording() { return *_recording; }
  /// Whether the recording was made on this machine.
  [[nodiscard]] bool madeHere() const { return _madeHere; }
  [[nodiscard]] const MachineFolder& machine() const { return _machine; }
  /// Where programs and libraries of that machine are looked for, after the user's own folders.
  [[nodiscard]] const std::vector<std::string>& roots() const { return _roots; }
  /// What is missing or was damaged and changes a document, a line each.
  [[nodiscard]] const std::vector<std::string>& notes() const { return _notes; }

 private:
  [[nodiscard]] bool isOfRunningKernel(const Survey& survey) const;

  std::unique_ptr<Capture> _capture;
  std::unique_ptr<Recording> _recording;
  MachineFolder _machine;
  bool _madeHere = false;
  std::vector<std::string> _roots;
  std::vector<std::string> _notes;
};

}  // namespace zelkit
