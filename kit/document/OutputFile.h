/// Where a document or an export goes.
#pragma once

#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

#include "document/ByteSink.h"
#include "document/NewFile.h"

namespace zelkit {

/// A new file. "-" is standard output, and a path of a pipe or device is written to as it is.
class OutputFile : public ByteSink {
 public:
  /// Throws std::runtime_error with "PATH: reason", also if the path is the input's; an empty input is none.
  explicit OutputFile(const std::string& path, const std::string& input = {});
  ~OutputFile() override;
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  /// Throws std::runtime_error with "PATH: reason", as does commit.
  void write(std::string_view bytes) override;
  void commit();

 private:
  [[noreturn]] void fail() const;

  std::string _path;
  /// None for what is no regular file.
  std::optional<NewFile> _place;
  std::FILE* _file = nullptr;
};

}  // namespace zelkit
