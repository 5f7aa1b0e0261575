#include "document/ByteSource.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace zelkit {

namespace {

/// Reads that are at least twice as large skip this buffer.
constexpr unsigned int kReadAhead = 64 * 1024;

std::runtime_error failure(const std::string& name, const char* reason) {
  return std::runtime_error(name + ": " + reason);
}

/// Opens the file, or for "-" a copy of standard input's descriptor, which the source may close.
int openForReading(const std::string& path) {
  return path == "-" ? dup(STDIN_FILENO) : open(path.c_str(), O_RDONLY | O_CLOEXEC);
}

bool isFolder(int descriptor) {
  struct stat status = {};
  return fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode);
}

}  // namespace

FileSource::FileSource(const std::string& path) : _name(path == "-" ? "standard input" : path) {
  const int descriptor = openForReading(path);
  if (descriptor < 0) throw failure(_name, std::strerror(errno));
  if (isFolder(descriptor)) {
    close(descriptor);
    throw failure(_name, std::strerror(EISDIR));
  }
  _file = gzdopen(descriptor, "rb");
  if (_file == nullptr) {
    close(descriptor);
    throw failure(_name, "out of memory");
  }
  gzbuffer(_file, kReadAhead);
}

FileSource::~FileSource() {
  gzclose_r(_file);
}

std::size_t FileSource::read(char* buffer, std::size_t size) {
  const int count = gzread(_file, buffer, static_cast<unsigned int>(size));
  if (count >= 0) return static_cast<std::size_t>(count);
  int error = Z_OK;
  const char* reason = gzerror(_file, &error);
  throw failure(_name, error == Z_ERRNO ? std::strerror(errno) : reason);
}

std::string wholeText(ByteSource& source) {
  std::string text;
  char block[65536];
  while (const std::size_t count = source.read(block, sizeof block)) text.append(block, count);
  return text;
}

std::size_t MemorySource::read(char* buffer, std::size_t size) {
  const std::size_t count = std::min(size, _rest.size());
  std::copy_n(_rest.data(), count, buffer);
  _rest.remove_prefix(count);
  return count;
}

}  // namespace zelkit
