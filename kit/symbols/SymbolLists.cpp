#include "symbols/SymbolLists.h"

#include <sys/stat.h>
#include <zlib.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

#include "symbols/ElfSymbols.h"

namespace zelkit {

namespace {

struct stat statusOf(const std::string& path) {
  struct stat status = {};
  if (stat(path.c_str(), &status) != 0) throw std::runtime_error(path + ": " + std::strerror(errno));
  return status;
}

/// Returns a name that identifies the list. Stripped and unstripped copies of a build share their build-id,
/// but not their size.
std::string cacheName(const FoundFile& file) {
  const struct stat status = statusOf(file.path);
  std::string name = file.elf.buildId;
  if (name.empty())
    name = "file-" + std::to_string(status.st_dev) + '-' + std::to_string(status.st_ino) + '-' +
           std::to_string(status.st_mtim.tv_sec) + '-' + std::to_string(status.st_mtim.tv_nsec);
  name += '-' + std::to_string(status.st_size);
  if (!file.debugPath.empty()) name += '-' + std::to_string(statusOf(file.debugPath).st_size);
  return name;
}

std::string cacheName(std::string_view text) {
  const auto* bytes = reinterpret_cast<const Bytef*>(text.data());
  return "text-" + std::to_string(text.size()) + '-' + std::to_string(crc32_z(0, bytes, text.size())) + '-' +
         std::to_string(adler32_z(1, bytes, text.size()));
}

}  // namespace

SymbolLists::SymbolLists(std::string cacheFolder, std::uint64_t cacheLimit)
    : _cache(std::move(cacheFolder), cacheLimit) {}

SymbolLists::~SymbolLists() {
  if (_made > 0) _cache.trim();
}

std::shared_ptr<const SymbolList> SymbolLists::listOf(const FoundFile& file) {
  std::shared_ptr<const SymbolList>& list = _lists[{file.path, file.debugPath}];
  if (list == nullptr) {
    const std::string name = cacheName(file);
    list = obtain(_cache.load(name), name, [&] { return readElfSymbols(file.path, file.debugPath); });
  }
  return list;
}

std::shared_ptr<const SymbolList> SymbolLists::listOfText(std::string_view text,
                                                          SymbolList (*make)(std::string_view)) {
  const std::string name = cacheName(text);
  return obtain(_cache.load(name), name, [&] { return make(text); });
}

std::shared_ptr<const SymbolList> SymbolLists::listSince(const std::string& name,
                                                         std::filesystem::file_time_type time,
                                                         const std::function<SymbolList()>& make) {
  return obtain(_cache.loadStoredSince(name, time), name, make);
}

std::shared_ptr<const SymbolList> SymbolLists::obtain(std::optional<SymbolList> cached,
                                                      const std::string& name,
                                                      const std::function<SymbolList()>& make) {
  if (cached) {
    ++_cached;
    return std::make_shared<SymbolList>(std::move(*cached));
  }
  auto list = std::make_shared<SymbolList>(make());
  ++_made;
  if (!_cache.store(name, *list)) ++_notKept;
  return list;
}

std::string SymbolLists::defaultCacheFolder() {
  const char* cache = std::getenv("XDG_CACHE_HOME");
  if (cache != nullptr && *cache == '/') return std::string(cache) + "/zelkit";
  const char* home = std::getenv("HOME");
  return home != nullptr && *home == '/' ? std::string(home) + "/.cache/zelkit" : "";
}

}  // namespace zelkit
