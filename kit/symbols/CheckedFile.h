/// Opens files whose names come from a recording: only regular ones, and only below a given root.
#pragma once

#include <string>
#include <string_view>

namespace zelkit {

/// A file descriptor that closes itself.
class Descriptor {
 public:
  explicit Descriptor(int number = -1) : _number(number) {}
  ~Descriptor();
  Descriptor(Descriptor&& other) noexcept : _number(other.release()) {}
  Descriptor& operator=(Descriptor&&) = delete;

  [[nodiscard]] bool valid() const { return _number >= 0; }
  [[nodiscard]] int number() const { return _number; }
  /// Releases the descriptor to the caller, which must close it.
  int release();

 private:
  int _number;
};

/// Returns the path of the regular file `name` below `root`, or "" if there is none. Links and ".." are
/// resolved as if `root` were "/", so nothing outside of it is found.
std::string resolveBelow(const std::string& root, std::string_view name);

/// Opens a regular file for reading. Throws std::runtime_error with "FILE: reason"; other kinds of files are
/// not opened, as that may have side effects.
Descriptor openRegular(const std::string& path);

/// Returns the whole content of a regular file. Throws as openRegular does.
std::string readWhole(const std::string& path);

}  // namespace zelkit
