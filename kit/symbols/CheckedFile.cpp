#include "symbols/CheckedFile.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <utility>

namespace zelkit {

namespace {

[[noreturn]] void fail(const std::string& path, const char* reason) {
  throw std::runtime_error(path + ": " + reason);
}

bool isRegular(int descriptor) {
  struct stat status = {};
  return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

std::string realPath(const std::string& path) {
  const std::unique_ptr<char, decltype(&std::free)> real(realpath(path.c_str(), nullptr), std::free);
  return real ? real.get() : "";
}

/// Implements resolveBelow for kernels that cannot resolve a path within a root: links to outside are not
/// found.
std::string resolveByPath(const std::string& root, const std::string& name) {
  std::string top = realPath(root);
  const std::string path = realPath(root + "/" + name);
  if (top.empty() || path.empty()) return {};
  if (top != "/") top += '/';
  struct stat status = {};
  return path.starts_with(top) && stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) ? path : "";
}

}  // namespace

Descriptor::~Descriptor() {
  if (_number >= 0) ::close(_number);
}

int Descriptor::release() {
  return std::exchange(_number, -1);
}

std::string resolveBelow(const std::string& root, std::string_view name) {
  const std::string path(name);
  if (path.find('\0') != std::string::npos) return {};
  const Descriptor folder(::open(root.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  if (!folder.valid()) return {};
  open_how how{};
  how.flags = O_PATH | O_CLOEXEC;
  how.resolve = RESOLVE_IN_ROOT | RESOLVE_NO_MAGICLINKS;
  const Descriptor file(
      static_cast<int>(syscall(SYS_openat2, folder.number(), path.c_str(), &how, sizeof how)));
  if (!file.valid()) return errno == ENOSYS || errno == EPERM ? resolveByPath(root, path) : "";
  if (!isRegular(file.number())) return {};
  char resolved[PATH_MAX];
  const std::string link = "/proc/self/fd/" + std::to_string(file.number());
  const ssize_t length = readlink(link.c_str(), resolved, sizeof resolved);
  return length > 0 ? std::string(resolved, static_cast<std::size_t>(length)) : "";
}

Descriptor openRegular(const std::string& path) {
  // Without O_NONBLOCK the opening of a pipe would wait for its writer.
  Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (!file.valid()) fail(path, std::strerror(errno));
  if (!isRegular(file.number())) fail(path, "not a regular file");
  return file;
}

std::string readWhole(const std::string& path) {
  const Descriptor file = openRegular(path);
  struct stat status = {};
  if (fstat(file.number(), &status) != 0) fail(path, std::strerror(errno));
  std::string content(static_cast<std::size_t>(status.st_size), '\0');
  // Files of /proc report size 0. The largest one has a few megabytes.
  if (content.empty()) content.reserve(std::size_t{8} << 20);
  std::size_t got = 0;
  while (true) {
    if (got == content.size()) content.resize(content.size() + 4096);
    const ssize_t part = ::read(file.number(), content.data() + got, content.size() - got);
    if (part < 0) fail(path, std::strerror(errno));
    if (part == 0) break;
    got += static_cast<std::size_t>(part);
  }
  content.resize(got);
  return content;
}

}  // namespace zelkit
