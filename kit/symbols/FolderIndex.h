#pragma once

#include <map>
#include <string>
#include <vector>

namespace zelkit {

/// The files anywhere below a folder by their names, such as those of a build's output. The folder is walked
/// on the first question; links are not followed. Of "/" nothing is known: it holds too much that has nothing
/// to do with a recording.
class FolderIndex {
 public:
  explicit FolderIndex(std::string folder) : _folder(std::move(folder)) {}

  /// Returns the paths below the folder, relative to it, of the files of that name; ascending.
  const std::vector<std::string>& pathsOf(const std::string& name);

 private:
  void walk();

  std::string _folder;
  bool _walked = false;
  std::map<std::string, std::vector<std::string>> _paths;
};

}  // namespace zelkit
