#include "document/NewFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace zelkit {

namespace {

[[noreturn]] void fail(const std::string& path, const char* reason) {
  throw std::runtime_error(path + ": " + reason);
}

bool statusOf(const std::string& path, struct stat& status) {
  return (path == "-" ? fstat(STDIN_FILENO, &status) : stat(path.c_str(), &status)) == 0;
}

}  // namespace

NewFile::NewFile(const std::string& path, const std::vector<std::string>& inputs) : _path(path) {
  struct stat present = {};
  if (stat(path.c_str(), &present) == 0) {
    if (!S_ISREG(present.st_mode)) fail(path, "is not a regular file");
    for (const std::string& input : inputs) {
      struct stat status = {};
      if (statusOf(input, status) && status.st_dev == present.st_dev && status.st_ino == present.st_ino)
        fail(path, "is the input itself, which writing would destroy");
    }
  }
  _temporary = path + ".XXXXXX";
  const int fd = mkostemp(_temporary.data(), O_CLOEXEC);
  if (fd < 0) fail(path, std::strerror(errno));
  const mode_t mask = umask(0);
  umask(mask);
  fchmod(fd, 0666 & ~mask);
  ::close(fd);
}

NewFile::~NewFile() {
  if (!_temporary.empty()) unlink(_temporary.c_str());
}

void NewFile::commit() {
  if (std::rename(_temporary.c_str(), _path.c_str()) != 0) fail(_path, std::strerror(errno));
  _temporary.clear();
}

}  // namespace zelkit
