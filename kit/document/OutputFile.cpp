#include "document/OutputFile.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace zelkit {

namespace {

bool isPipeOrDevice(const std::string& path) {
  struct stat status = {};
  return stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode);
}

}  // namespace

OutputFile::OutputFile(const std::string& path, const std::vector<std::string>& inputs) : _path(path) {
  if (path == "-") {
    _file = stdout;
    return;
  }
  if (!isPipeOrDevice(path)) _place.emplace(path, inputs);
  _file = std::fopen(_place ? _place->path().c_str() : path.c_str(), "we");
  if (_file == nullptr) fail();
}

OutputFile::~OutputFile() {
  if (_file != nullptr && _file != stdout) std::fclose(_file);
}

void OutputFile::write(std::string_view bytes) {
  if (std::fwrite(bytes.data(), 1, bytes.size(), _file) != bytes.size()) fail();
}

void OutputFile::commit() {
  std::FILE* const file = _file;
  if (file == stdout) {
    if (std::fflush(file) != 0) fail();
    return;
  }
  _file = nullptr;
  if (std::fclose(file) != 0) fail();
  if (_place) _place->commit();
}

void OutputFile::fail() const {
  throw std::runtime_error((_path == "-" ? "standard output" : _path) + ": " + std::strerror(errno));
}

}  // namespace zelkit
