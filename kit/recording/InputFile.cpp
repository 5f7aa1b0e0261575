#include "recording/InputFile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace zelkit {

namespace {

[[noreturn]] void fail(const std::string& path) {
  throw std::runtime_error(path + ": " + std::strerror(errno));
}

/// A descriptor that closes itself.
class Descriptor {
 public:
  explicit Descriptor(int fd) : _fd(fd) {}
  ~Descriptor() { ::close(_fd); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  [[nodiscard]] int get() const { return _fd; }

 private:
  int _fd;
};

}  // namespace

InputFile::InputFile(const std::string& path) : _path(path) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) fail(path);
  const Descriptor file(fd);
  struct stat status = {};
  if (fstat(fd, &status) != 0) fail(path);
  if (!S_ISREG(status.st_mode)) {
    readWhole(fd);
  } else if (status.st_size > 0) {
    map(fd, static_cast<std::size_t>(status.st_size));
  }
}

void InputFile::map(int fd, std::size_t size) {
  void* mapped = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, fd, 0);
  if (mapped == MAP_FAILED) fail(_path);
  _bytes = {static_cast<const char*>(mapped), size};
}

InputFile::~InputFile() {
  if (_copy.empty() && !_bytes.empty()) munmap(const_cast<char*>(_bytes.data()), _bytes.size());
}

void InputFile::readWhole(int fd) {
  char block[1 << 16];
  for (;;) {
    const ssize_t count = ::read(fd, block, sizeof block);
    if (count < 0) fail(_path);
    if (count == 0) break;
    _copy.append(block, static_cast<std::size_t>(count));
  }
  _bytes = _copy;
}

void InputFile::release() {
  if (_copy.empty() && !_bytes.empty())
    madvise(const_cast<char*>(_bytes.data()), _bytes.size(), MADV_DONTNEED);
}

}  // namespace zelkit
