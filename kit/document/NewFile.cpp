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

bool areOneFile(const std::string& left, const std::string& right) {
  struct stat a = {};
  struct stat b = {};
  return stat(left.c_str(), &a) == 0 && stat(right.c_str(), &b) == 0 && a.st_dev == b.st_dev &&
         a.st_ino == b.st_ino;
}

}  // namespace

NewFile::NewFile(const std::string& path, const std::string& input) : _path(path) {
  if (areOneFile(path, input)) fail(path, "is the input itself, which writing would destroy");
  struct stat status = {};
  if (stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) fail(path, "is not a regular file");
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
