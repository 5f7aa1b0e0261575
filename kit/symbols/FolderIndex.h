#pragma once

#include <map>
#include <string>
#include <vector>

namespace zelkit {

/// Index by name of all files below a folder, such as a build's output. The folder is read on the first
/// query; links are not followed. "/" is never read: it has too many files unrelated to a recording.
class FolderIndex {
 public:
  explicit FolderIndex(std::string folder) : _folder(std::move(folder)) {}

  /// Returns the paths, relative to the folder, of the files with that name; ascending.
  const std::vector<std::string>& pathsOf(const std::string& name);

 private:
  void walk();

  std::string _folder;
  bool _walked = false;
  std::map<std::string, std::vector<std::string>> _paths;
};

}  // namespace zelkit
