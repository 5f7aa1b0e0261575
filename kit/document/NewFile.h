#pragma once

#include <string>

namespace zelkit {

/// A place beside a file's own, at which it is written, and from which it is renamed when it is whole: nobody
/// finds half of it, and a failed run leaves what was there.
class NewFile {
 public:
  /// Throws std::runtime_error with "PATH: reason", also if the path is the input's: writing would destroy
  /// it. An empty input is none.
  explicit NewFile(const std::string& path, const std::string& input = {});
  /// Removes what was written, unless it was committed.
  ~NewFile();
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  /// Where to write.
  [[nodiscard]] const std::string& path() const { return _temporary; }
  /// Puts the file into its place. Throws std::runtime_error with "PATH: reason".
  void commit();

 private:
  std::string _path;
  std::string _temporary;
};

}  // namespace zelkit
