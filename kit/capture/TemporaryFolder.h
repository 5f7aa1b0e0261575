#pragma once

#include <string>

namespace zelkit {

/// A folder below $TMPDIR with access for this user only, removed with the object.
class TemporaryFolder {
 public:
  /// Throws std::runtime_error with "FOLDER: reason" if it cannot be made.
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  [[nodiscard]] const std::string& path() const { return _path; }

 private:
  std::string _path;
};

}  // namespace zelkit
