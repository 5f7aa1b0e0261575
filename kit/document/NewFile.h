#pragma once

#include <string>
#include <vector>

namespace zelkit {

/// Returns whether writing to both paths would write to one file, which need not exist.
bool willBeSameFile(const std::string& first, const std::string& second);

/// A temporary file in the folder of the file to be written, renamed to it when complete: readers never see a
/// partial file, and a failed run keeps the old one.
class NewFile {
 public:
  /// Throws std::runtime_error with "PATH: reason", also if the path is the same file as one of the inputs,
  /// which writing would destroy. The input "-" is standard input; inputs that do not exist are ignored.
  explicit NewFile(const std::string& path, const std::vector<std::string>& inputs = {});
  /// Removes the temporary file unless it was committed.
  ~NewFile();
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  /// Returns the path of the temporary file.
  [[nodiscard]] const std::string& path() const { return _temporary; }
  /// Renames the temporary file. Throws std::runtime_error with "PATH: reason".
  void commit();

 private:
  std::string _path;
  std::string _temporary;
};

}  // namespace zelkit
