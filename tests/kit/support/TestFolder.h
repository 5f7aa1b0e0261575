#pragma once

#include <fstream>
#include <iterator>
#include <string>

#include "capture/TemporaryFolder.h"

/// A temporary folder for the files of a test.
class TestFolder {
 public:
  /// Writes a file and returns its path.
  std::string write(const std::string& name, const std::string& bytes) const {
    std::ofstream(path(name), std::ios::binary) << bytes;
    return path(name);
  }
  [[nodiscard]] std::string read(const std::string& name) const {
    std::ifstream file(path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  [[nodiscard]] std::string path(const std::string& name) const { return _folder.path() + "/" + name; }

 private:
  zelkit::TemporaryFolder _folder;
};
