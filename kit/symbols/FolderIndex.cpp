#include "symbols/FolderIndex.h"

#include <algorithm>
#include <filesystem>

namespace zelkit {

namespace {

namespace fs = std::filesystem;

/// Limit of entries, above the size of a build's output or of a copy of a device.
constexpr int kMostEntries = 1'000'000;

}  // namespace

const std::vector<std::string>& FolderIndex::pathsOf(const std::string& name) {
  if (!_walked) walk();
  return _paths[name];
}

void FolderIndex::walk() {
  _walked = true;
  std::error_code error;
  if (fs::equivalent(_folder, "/", error)) return;
  fs::recursive_directory_iterator entry(_folder, fs::directory_options::skip_permission_denied, error);
  for (int count = 0; !error && entry != fs::end(entry) && count < kMostEntries; ++count) {
    std::error_code gone;
    if (entry->symlink_status(gone).type() == fs::file_type::regular)
      _paths[entry->path().filename()].push_back(entry->path().lexically_relative(_folder));
    entry.increment(error);
  }
  for (auto& [name, paths] : _paths) std::sort(paths.begin(), paths.end());
}

}  // namespace zelkit
