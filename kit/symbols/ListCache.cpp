#include "symbols/ListCache.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <vector>

#include "symbols/CheckedFile.h"

namespace zelkit {

namespace {

namespace fs = std::filesystem;

constexpr const char* kUnfinished = ".unfinished";
constexpr auto kUnfinishedFor = std::chrono::hours(1);

/// Marks the file as used now; fails without consequence in another user's folder.
void markUsed(const std::string& path) {
  utimensat(AT_FDCWD, path.c_str(), nullptr, 0);
}

bool writeAll(int file, std::string_view bytes) {
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t part = ::write(file, bytes.data() + done, bytes.size() - done);
    if (part <= 0) return false;
    done += static_cast<std::size_t>(part);
  }
  return true;
}

bool makeFolder(const std::string& folder) {
  std::error_code error;
  fs::create_directories(fs::path(folder).parent_path(), error);
  return ::mkdir(folder.c_str(), S_IRWXU) == 0 || fs::is_directory(folder, error);
}

struct Kept {
  fs::path path;
  std::uint64_t size;
  fs::file_time_type used;
};

/// Returns the lists in the folder, least recently used first, and removes unfinished ones.
std::vector<Kept> keptLists(const std::string& folder) {
  std::vector<Kept> lists;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    std::error_code gone;
    const Kept kept{entry->path(), entry->file_size(gone), entry->last_write_time(gone)};
    if (gone) continue;
    if (kept.path.extension() == ".symbols") lists.push_back(kept);
    if (kept.path.extension() == kUnfinished && kept.used + kUnfinishedFor < fs::file_time_type::clock::now())
      fs::remove(kept.path, gone);
  }
  std::sort(lists.begin(), lists.end(), [](const Kept& a, const Kept& b) { return a.used < b.used; });
  return lists;
}

/// Returns nothing if there is no such file or it is no list.
std::optional<SymbolList> readList(const std::string& path) {
  try {
    return SymbolList::fromFile(path);
  } catch (const std::runtime_error&) {
    return {};
  }
}

}  // namespace

std::optional<SymbolList> ListCache::load(const std::string& name) const {
  if (_folder.empty()) return {};
  std::optional<SymbolList> list = readList(pathOf(name));
  if (list) markUsed(pathOf(name));
  return list;
}

std::optional<SymbolList> ListCache::loadStoredSince(const std::string& name, fs::file_time_type time) const {
  if (_folder.empty()) return {};
  std::error_code error;
  if (const auto stored = fs::last_write_time(pathOf(name), error); error || stored < time) return {};
  return readList(pathOf(name));
}

bool ListCache::store(const std::string& name, const SymbolList& list) const {
  if (_folder.empty() || !makeFolder(_folder)) return false;
  std::string unfinished = _folder + "/XXXXXX" + kUnfinished;
  const int file =
      mkostemps(unfinished.data(), static_cast<int>(std::string_view(kUnfinished).size()), O_CLOEXEC);
  if (file < 0) return false;
  const bool written = writeAll(file, list.bytes());
  // Some file systems report only now that the disk is full.
  const bool closed = ::close(file) == 0;
  if (written && closed && std::rename(unfinished.c_str(), pathOf(name).c_str()) == 0) return true;
  ::unlink(unfinished.c_str());
  return false;
}

void ListCache::trim() const {
  if (_folder.empty()) return;
  const std::vector<Kept> lists = keptLists(_folder);
  std::uint64_t total = 0;
  for (const Kept& list : lists) total += list.size;
  for (const Kept& list : lists) {
    if (total <= _limit) return;
    std::error_code gone;
    fs::remove(list.path, gone);
    total -= list.size;
  }
}

}  // namespace zelkit
