#pragma once

#include <memory>
#include <string>
#include <vector>

#include "capture/Capture.h"
#include "capture/Machine.h"
#include "recording/Recording.h"
#include "verbs/Survey.h"

namespace zelkit {

/// The input of a verb: a recording, or a capture with a recording in it.
class Source {
 public:
  /// Throws std::runtime_error with "PATH: reason".
  explicit Source(const std::string& path);

  /// Chooses the files of the machine that made the recording: those in `folder` unless that is empty, those
  /// of the capture, or this machine's if the recording was made here by the running kernel; otherwise none.
  void chooseMachine(const std::string& folder, const Survey& survey);
  /// Chooses only the folders for programs and libraries.
  void chooseRoots(const std::string& folder);

  /// Returns the files that may be read for that path: itself, or the recording and the texts in a folder.
  static std::vector<std::string> filesOf(const std::string& path);
  /// Returns the files that may be read of the input and of the folder of the machine.
  [[nodiscard]] const std::vector<std::string>& files() const { return _files; }

  [[nodiscard]] Recording& recording() { return *_recording; }
  /// Returns a message with the paths of unpacked files as the user knows them.
  [[nodiscard]] std::string shown(const std::string& message) const {
    return _capture ? _capture->shown(message) : message;
  }
  /// Returns whether the recording was made on this machine.
  [[nodiscard]] bool madeHere() const { return _madeHere; }
  [[nodiscard]] const MachineFolder& machine() const { return _machine; }
  /// Returns the folders with programs and libraries of that machine, searched after the user's own.
  [[nodiscard]] const std::vector<std::string>& roots() const { return _roots; }
  /// Returns one line for each missing or damaged thing that changes a document.
  [[nodiscard]] const std::vector<std::string>& notes() const { return _notes; }

 private:
  [[nodiscard]] bool isOfRunningKernel(const Survey& survey) const;

  std::vector<std::string> _files;
  std::unique_ptr<Capture> _capture;
  std::unique_ptr<Recording> _recording;
  MachineFolder _machine;
  bool _madeHere = false;
  std::vector<std::string> _roots;
  std::vector<std::string> _notes;
};

}  // namespace zelkit
