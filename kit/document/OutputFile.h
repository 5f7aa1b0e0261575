/// Where a document or an export goes.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace zelkit {

/// A file that is written beside its place and renamed at the end, so that nobody finds half of it and a
/// failed run leaves what was there. "-" is standard output.
class OutputFile {
 public:
  /// Throws std::runtime_error with "PATH: reason".
  explicit OutputFile(const std::string& path);
  /// Removes what was written, unless it was committed.
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  /// Throws std::runtime_error with "PATH: reason", as does commit.
  void write(std::string_view bytes);
  void commit();

 private:
  [[noreturn]] void fail() const;

  std::string _path;
  std::string _temporary;
  std::FILE* _file = nullptr;
};

}  // namespace zelkit
