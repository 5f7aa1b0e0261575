#include "capture/Tar.h"

#include <archive.h>
#include <archive_entry.h>
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string_view>

namespace zelkit {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kReadAhead = std::size_t{256} * 1024;

[[noreturn]] void fail(const std::string& path, const std::string& reason) {
  throw std::runtime_error(path + ": " + reason);
}

/// One pass over a tar.
class Unpacking {
 public:
  Unpacking(const std::string& path, const std::string& folder)
      : _path(path), _folder(folder), _tar(archive_read_new(), archive_read_free) {
    archive_read_support_filter_gzip(_tar.get());
    archive_read_support_filter_zstd(_tar.get());
    archive_read_support_filter_xz(_tar.get());
    archive_read_support_format_tar(_tar.get());
    if (archive_read_open_filename(_tar.get(), path.c_str(), kReadAhead) != ARCHIVE_OK) fail(path, reason());
  }

  std::string run() {
    archive_entry* entry = nullptr;
    int status = ARCHIVE_OK;
    while ((status = archive_read_next_header(_tar.get(), &entry)) == ARCHIVE_OK || status == ARCHIVE_WARN) {
      take(entry);
      if (!_damage.empty()) return _damage;
      ++_taken;
    }
    if (status != ARCHIVE_EOF) noteDamage();
    if (status != ARCHIVE_EOF && _taken == 0) fail(_path, reason());
    return _damage;
  }

 private:
  void take(archive_entry* entry) {
    const char* name = archive_entry_pathname(entry);
    if (name == nullptr) fail(_path, "an entry without a name that can be read");
    const fs::path place = safePlace(name);
    if (archive_entry_hardlink(entry) != nullptr || archive_entry_symlink(entry) != nullptr)
      fail(_path, "refused: \"" + std::string(name) + "\" is a link");
    if (archive_entry_filetype(entry) == AE_IFDIR) {
      makeFolder(place);
    } else if (archive_entry_filetype(entry) == AE_IFREG) {
      makeFolder(place.parent_path());
      write(place);
    } else {
      fail(_path, "refused: \"" + std::string(name) + "\" is neither a file nor a folder");
    }
  }

  /// Returns the path at which an entry is unpacked. Links are refused, so only the name could lead outside
  /// the folder.
  [[nodiscard]] fs::path safePlace(const std::string& name) const {
    const fs::path relative(name);
    bool leadsOut = relative.is_absolute();
    for (const fs::path& part : relative) leadsOut = leadsOut || part == "..";
    if (leadsOut) fail(_path, "refused: \"" + name + "\" leads out of the capture");
    return fs::path(_folder) / relative;
  }

  void makeFolder(const fs::path& place) const {
    std::error_code error;
    fs::create_directories(place, error);
    if (error) fail(place, error.message());
  }

  void write(const fs::path& place) {
    const int file = ::open(place.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (file < 0) fail(place, std::strerror(errno));
    errno = 0;
    const int status = archive_read_data_into_fd(_tar.get(), file);
    const int error = errno;
    const bool closed = ::close(file) == 0;
    if (status == ARCHIVE_OK && closed) return;
    // These errors are failed writes; any other is damage of the tar.
    if (!closed || error == ENOSPC || error == EDQUOT || error == EFBIG || error == EIO)
      fail(place, std::strerror(error));
    noteDamage();
  }

  void noteDamage() {
    _damage = _path + ": damaged after " + std::to_string(_taken) + " entries: " + reason();
  }

  [[nodiscard]] std::string reason() const {
    const char* text = archive_error_string(_tar.get());
    return text != nullptr ? text : "cannot be read";
  }

  const std::string& _path;
  const std::string& _folder;
  std::unique_ptr<archive, decltype(&archive_read_free)> _tar;
  std::size_t _taken = 0;
  std::string _damage;
};

}  // namespace

bool isTar(const std::string& path) {
  constexpr std::size_t kMagicOffset = 257;
  std::array<char, kMagicOffset + 5> start{};
  std::ifstream(path, std::ios::binary).read(start.data(), start.size());
  const std::string_view bytes(start.data(), start.size());
  for (const std::string_view compressed : {"\x1f\x8b", "\x28\xb5\x2f\xfd",
                                            "\xfd"
                                            "7zXZ"})
    if (bytes.starts_with(compressed)) return true;
  return bytes.substr(kMagicOffset) == "ustar";
}

std::string unpackTar(const std::string& path, const std::string& folder) {
  return Unpacking(path, folder).run();
}

}  // namespace zelkit
