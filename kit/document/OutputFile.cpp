#include "document/OutputFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace zelkit {

namespace {

/// Files that programs make have these rights less the user's mask, and a temporary file would have fewer.
constexpr mode_t kUsualMode = 0666;

mode_t maskedMode() {
  const mode_t mask = umask(0);
  umask(mask);
  return kUsualMode & ~mask;
}

}  // namespace

OutputFile::OutputFile(const std::string& path) : _path(path) {
  if (path == "-") {
    _file = stdout;
    return;
  }
  _temporary = path + ".XXXXXX";
  const int descriptor = mkostemp(_temporary.data(), O_CLOEXEC);
  if (descriptor < 0) fail();
  fchmod(descriptor, maskedMode());
  _file = fdopen(descriptor, "w");
}

OutputFile::~OutputFile() {
  if (_temporary.empty()) return;
  if (_file != nullptr) std::fclose(_file);
  unlink(_temporary.c_str());
}

void OutputFile::write(std::string_view bytes) {
  if (std::fwrite(bytes.data(), 1, bytes.size(), _file) != bytes.size()) fail();
}

void OutputFile::commit() {
  if (_temporary.empty()) {
    if (std::fflush(_file) != 0) fail();
    return;
  }
  std::FILE* const file = _file;
  _file = nullptr;
  if (std::fclose(file) != 0 || std::rename(_temporary.c_str(), _path.c_str()) != 0) fail();
  _temporary.clear();
}

void OutputFile::fail() const {
  throw std::runtime_error((_path == "-" ? "standard output" : _path) + ": " + std::strerror(errno));
}

}  // namespace zelkit
