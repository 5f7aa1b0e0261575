#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "capture/TemporaryFolder.h"

namespace zelkit {

/// A folder in which a test makes ELF files out of the fixture program by the tools of binutils.
class ElfWorkshop {
 public:
  /// Returns the path of a file in the folder; the folders above it are made.
  [[nodiscard]] std::string path(const std::string& name) const {
    const std::filesystem::path path = std::filesystem::path(_folder.path()) / name;
    std::filesystem::create_directories(path.parent_path());
    return path;
  }

  /// Runs a shell command in the folder; "$FIXTURE" in it is the fixture program.
  void run(const std::string& command) const {
    const std::string whole =
        "cd '" + _folder.path() + "' && FIXTURE='" ZELKIT_FIXTURE "' && { " + command + "; } >run.log 2>&1";
    ASSERT_EQ(std::system(whole.c_str()), 0) << command << "\n" << read("run.log");
  }

  /// Returns what a command prints.
  [[nodiscard]] std::string output(const std::string& command) const {
    run("{ " + command + "; } >output");
    return read("output");
  }

  [[nodiscard]] std::string read(const std::string& name) const {
    std::ifstream file(path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  void write(const std::string& name, const std::string& content) const {
    std::ofstream(path(name), std::ios::binary) << content;
  }

  static bool has(const std::string& program) {
    return std::system(("command -v " + program + " >/dev/null").c_str()) == 0;
  }

  [[nodiscard]] const std::string& folder() const { return _folder.path(); }

 private:
  TemporaryFolder _folder;
};

}  // namespace zelkit
