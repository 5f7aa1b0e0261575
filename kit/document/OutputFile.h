/// Output file of a document or an export.
#pragma once

#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

#include "document/ByteSink.h"
#include "document/NewFile.h"

namespace zelkit {

/// A new file. "-" is standard output; a pipe or device is written to directly.
class OutputFile : public ByteSink {
 public:
  /// Throws std::runtime_error with "PATH: reason", also if the path is that of an input, as NewFile does.
  explicit OutputFile(const std::string& path, const std::vector<std::string>& inputs = {});
  ~OutputFile() override;
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  /// Throws std::runtime_error with "PATH: reason", as does commit.
  void write(std::string_view bytes) override;
  void commit();

 private:
  [[noreturn]] void fail() const;

  std::string _path;
  /// Empty for standard output, a pipe or a device.
  std::optional<NewFile> _place;
  std::FILE* _file = nullptr;
};

}  // namespace zelkit
