// Feeds random files to zelkit's other readers. By the first byte: an ELF file, a cached symbol list, a map
// of JIT code, a tar. Checks the results: lists ascend, and no tar writes outside its folder.

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

#include "capture/Tar.h"
#include "capture/TemporaryFolder.h"
#include "symbols/ElfSymbols.h"
#include "symbols/JitMap.h"

namespace {

using namespace zelkit;

/// A file in memory that has a path.
class MemoryFile {
 public:
  explicit MemoryFile(const std::string& content) : _file(memfd_create("input", MFD_CLOEXEC)) {
    if (_file < 0 || write(_file, content.data(), content.size()) != static_cast<ssize_t>(content.size()))
      std::abort();
  }
  ~MemoryFile() { close(_file); }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  [[nodiscard]] std::string path() const { return "/proc/self/fd/" + std::to_string(_file); }

 private:
  int _file;
};

void check(const SymbolList& list) {
  std::uint64_t end = 0;
  for (std::size_t i = 0; i < list.size(); ++i) {
    const Symbol symbol = list[i];
    if (symbol.address < end || symbol.size == 0) std::abort();
    end = symbol.address + symbol.size;
    if (list.find(symbol.address) != i || list.find(end - 1) != i) std::abort();
    if (symbol.name.find('\0') != std::string_view::npos) std::abort();
  }
}

/// The folder that a tar may write to is inside one that it must not write to.
void unpack(const std::string& content) {
  const TemporaryFolder outside;
  const std::string inside = outside.path() + "/inside";
  std::filesystem::create_directory(inside);
  try {
    unpackTar(MemoryFile(content).path(), inside);
  } catch (const std::runtime_error&) {
  }
  int entries = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(outside.path())) ++entries;
  if (entries != 1) std::abort();
  for (const auto& entry : std::filesystem::recursive_directory_iterator(inside))
    if (entry.is_symlink()) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string content(reinterpret_cast<const char*>(data) + 1, size - 1);
  try {
    std::size_t badLines = 0;
    switch (data[0] % 4) {
      case 0:
        check(readElfSymbols(MemoryFile(content).path(), ""));
        break;
      case 1:
        check(SymbolList::fromBytes(content));
        break;
      case 2:
        check(parseJitMap(content, badLines));
        break;
      default:
        unpack(content);
    }
  } catch (const std::runtime_error&) {
  }
  return 0;
}
