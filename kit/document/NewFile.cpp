#include "document/NewFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>

namespace zelkit {

namespace {

[[noreturn]] void fail(const std::string& path, const char* reason) {
  throw std::runtime_error(path + ": " + reason);
}

bool statusOf(const std::string& path, struct stat& status) {
  return (path == "-" ? fstat(STDIN_FILENO, &status) : stat(path.c_str(), &status)) == 0;
}

bool areSame(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

}  // namespace

bool willBeSameFile(const std::string& first, const std::string& second) {
  const std::filesystem::path a(first);
  const std::filesystem::path b(second);
  struct stat statusOfA = {};
  struct stat statusOfB = {};
  if (stat(a.c_str(), &statusOfA) == 0 && stat(b.c_str(), &statusOfB) == 0)
    return areSame(statusOfA, statusOfB);
  return a.filename() == b.filename() && stat(("." / a).parent_path().c_str(), &statusOfA) == 0 &&
         stat(("." / b).parent_path().c_str(), &statusOfB) == 0 && areSame(statusOfA, statusOfB);
}

NewFile::NewFile(const std::string& path, const std::vector<std::string>& inputs) : _path(path) {
  struct stat present = {};
  if (stat(path.c_str(), &present) == 0) {
    if (!S_ISREG(present.st_mode)) fail(path, "is not a regular file");
    for (const std::string& input : inputs) {
      struct stat status = {};
      if (statusOf(input, status) && areSame(status, present))
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
