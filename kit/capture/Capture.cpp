#include "capture/Capture.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <vector>

#include "capture/Tar.h"

namespace zelkit {

namespace {

namespace fs = std::filesystem;

bool holdsRecording(const fs::path& folder) {
  std::error_code error;
  return fs::is_regular_file(folder / "perf.data", error);
}

/// Returns the folder itself or its only subfolder, whichever has the recording: a tar may contain the
/// capture's folder.
fs::path folderOfRecording(const fs::path& folder) {
  if (holdsRecording(folder)) return folder;
  std::error_code error;
  std::vector<fs::path> inside;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
    inside.push_back(entry->path());
  return inside.size() == 1 && holdsRecording(inside[0]) ? inside[0] : "";
}

}  // namespace

bool Capture::isCapture(const std::string& path) {
  std::error_code error;
  return fs::is_directory(path, error) || (fs::is_regular_file(path, error) && isTar(path));
}

Capture::Capture(const std::string& path) : _path(path) {
  std::error_code error;
  std::string folder = path;
  if (!fs::is_directory(path, error)) {
    _unpacked = std::make_unique<TemporaryFolder>();
    folder = _unpacked->path();
    _damage = unpackTar(path, folder);
  }
  _folder = folderOfRecording(folder);
  if (_folder.empty()) throw std::runtime_error(path + ": no perf.data in this capture");
  _machine = MachineFolder::of(_folder);
  std::ifstream uname(_folder + "/uname");
  std::getline(uname, _uname);
}

std::string Capture::shown(std::string text) const {
  if (!_unpacked) return text;
  const std::string folder = _unpacked->path() + '/';
  for (std::size_t at = 0; (at = text.find(folder, at)) != std::string::npos; at += _path.size() + 1)
    text.replace(at, folder.size(), _path + ':');
  return text;
}

}  // namespace zelkit
