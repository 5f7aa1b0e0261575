/// Sources of the bytes of a document.
#pragma once

#include <zlib.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

namespace zelkit {

/// A stream of bytes with a name for messages.
class ByteSource {
 public:
  virtual ~ByteSource() = default;

  /// Reads up to `size` bytes. Returns 0 at the end. Throws std::runtime_error with "NAME: reason" on
  /// failure.
  virtual std::size_t read(char* buffer, std::size_t size) = 0;

  virtual const std::string& name() const = 0;
};

/// A file, gzipped or not; "-" is standard input.
class FileSource : public ByteSource {
 public:
  /// Throws std::runtime_error with "PATH: reason" when the file cannot be opened.
  explicit FileSource(const std::string& path);
  ~FileSource() override;
  FileSource(const FileSource&) = delete;
  FileSource& operator=(const FileSource&) = delete;

  std::size_t read(char* buffer, std::size_t size) override;
  const std::string& name() const override { return _name; }

 private:
  std::string _name;
  gzFile _file = nullptr;
};

/// Returns all bytes that are left.
std::string wholeText(ByteSource& source);

/// A text in memory, which must outlive the source.
class MemorySource : public ByteSource {
 public:
  explicit MemorySource(std::string_view text, std::string name = "memory")
      : _rest(text), _name(std::move(name)) {}

  std::size_t read(char* buffer, std::size_t size) override;
  const std::string& name() const override { return _name; }

 private:
  std::string_view _rest;
  std::string _name;
};

}  // namespace zelkit
