#include "capture/TemporaryFolder.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>

namespace zelkit {

TemporaryFolder::TemporaryFolder() {
  const char* parent = std::getenv("TMPDIR");
  _path = std::string(parent != nullptr && *parent != '\0' ? parent : "/tmp") + "/zelkit-XXXXXX";
  if (mkdtemp(_path.data()) == nullptr) throw std::runtime_error(_path + ": " + std::strerror(errno));
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(_path, ignored);
}

}  // namespace zelkit
