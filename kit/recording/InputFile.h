#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace zelkit {

/// The bytes of a file, which is mapped if possible and otherwise read as a whole (a pipe).
class InputFile {
 public:
  /// Throws std::runtime_error with "FILE: reason".
  explicit InputFile(const std::string& path);
  /// Uses bytes that are in memory already; the path is for messages.
  InputFile(std::string path, std::string bytes)
      : _path(std::move(path)), _copy(std::move(bytes)), _bytes(_copy) {}
  ~InputFile();
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;

  [[nodiscard]] const std::string& path() const { return _path; }
  [[nodiscard]] std::string_view bytes() const { return _bytes; }

  /// Releases the memory of all pages, which are read again on their next use.
  void release();

 private:
  void map(int fd, std::size_t size);
  void readWhole(int fd);

  std::string _path;
  std::string _copy;  ///< contents of a file that cannot be mapped
  std::string_view _bytes;
};

}  // namespace zelkit
