// The loading half of SymbolTable: finding a file along the search path, running nm and reading what it
// prints.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "base/MachineFiles.h"
#include "base/RunWatcher.h"
#include "run/KernelLog.h"
#include "run/Settings.h"
#include "symbols/NmQueue.h"
#include "symbols/PendingTables.h"
#include "symbols/SymbolListReader.h"
#include "symbols/SymbolTable.h"

namespace {

/// The entry of the search path for a name without a directory: checkFile strips leading blanks.
constexpr const char* kNoDirectory = " ";

constexpr std::size_t kFewestUsefulSymbols = 2;
constexpr std::size_t kReadAhead = std::size_t{64} * 1024;

bool isRegular(const char* path) {
  struct stat status = {};
  return stat(path, &status) == 0 && S_ISREG(status.st_mode);
}

/// Returns whether opening the file could have side effects. A socket cannot be opened, so trying is
/// harmless.
bool isSpecial(const char* path) {
  struct stat status = {};
  return stat(path, &status) == 0 && !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode) &&
         !S_ISSOCK(status.st_mode);
}

/// Returns whether output shows the order of loading: that of a verbose run and of -m. Then nothing is loaded
/// in advance.
bool isOrderShown() {
  return verbose() || gShowMarkers;
}

std::size_t processorCount() {
  return static_cast<std::size_t>(std::max(1L, ::sysconf(_SC_NPROCESSORS_ONLN)));
}

NmQueue nmQueue(processorCount());
PendingTables pendingTables;

/// Returns a function that continues a file's search at the next index of the search path.
NmQueue::NextFile searchAfter(const std::string& name, int place) {
  return [name, place]() mutable {
    ++place;
    return SymbolTable::findPathForFile(name, place);
  };
}

/// Passes on the messages of nm, or that it could not be started.
void tellOfNm(const NmRun& nm) {
  RunWatcher* const watcher = RunWatcher::_current;
  if (nm.error() != 0) {
    if (watcher != nullptr) watcher->nmNotStarted(nm.error());
    if (verbose()) std::fprintf(stderr, "nm: %s\n", std::strerror(nm.error()));
  }
  // An observer gets the number of symbols instead of nm's messages, which are one line per library.
  if (watcher == nullptr || verbose()) nm.repeatComplaints();
}

}  // namespace

void SymbolTable::setPath(const std::string& path) {
  _paths.assign(1, gMachineFiles.root.empty() ? kNoDirectory : gMachineFiles.root);
  std::size_t start = 0;
  while (start <= path.size()) {
    const std::size_t end = std::min(path.find(':', start), path.size());
    if (end - start > 1) _paths.push_back(path.substr(start, end - start));
    start = end + 1;
  }
}

int SymbolTable::stripPath(const std::string& path, std::string& baseName) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return 0;
  baseName = path.substr(slash + 1);
  return 1;
}

void fileNameNoPath(const std::string& path, std::string& baseName) {
  if (SymbolTable::stripPath(path, baseName) == 0) baseName = path;
}

int SymbolTable::checkFile(const std::string& directory, const std::string& file, std::string& result) {
  result = directory;
  if (file.empty() || file.front() != '/') result += '/';
  result += file;
  result.erase(0, result.find_first_not_of(' '));
  const bool special = isSpecial(result.c_str());
  const int fd = special ? access(result.c_str(), R_OK) : ::open(result.c_str(), O_RDONLY | O_CLOEXEC);
  if (verbose()) std::printf("checkFile %s=%d:%d\n", result.c_str(), fd, errno);
  if (fd < 0) return 0;
  if (!special) ::close(fd);
  return 1;
}

std::string SymbolTable::findPathForFile(const std::string& name, int& index) {
  std::string shortName;
  fileNameNoPath(name, shortName);
  std::string result;
  for (; static_cast<std::size_t>(index) < _paths.size(); ++index) {
    const std::string& directory = _paths[static_cast<std::size_t>(index)];
    if (checkFile(directory, name, result) != 0 || checkFile(directory, shortName, result) != 0)
      return result;
  }
  return {};
}

SymbolTable* SymbolTable::generateAndRead(const char* path) {
  if (verbose()) std::printf("SymbolTable:generateAndRead %s\n", path);
  writeMarker(path);
  std::unique_ptr<NmRun> nm;
  if (isRegular(path)) {
    nm = nmQueue.take(path);
    tellOfNm(*nm);
  }
  // After nm, so that the lines of a verbose run follow those of nm.
  auto* table = new SymbolTable(path, 0, 0);
  if (nm != nullptr && nm->list() != nullptr) table->read(nm->list(), false);
  if (nm != nullptr && RunWatcher::_current != nullptr)
    RunWatcher::_current->symbolsRead(path, table->elements().size());
  return table->elements().size() < kFewestUsefulSymbols ? nullptr : table;
}

SymbolTable* SymbolTable::readAlong(const std::string& name, int place, std::string path) {
  while (true) {
    if (verbose()) std::printf("SymbolTable:findAndRead %s\n", path.c_str());
    SymbolTable* table = generateAndRead(path.c_str());
    if (table != nullptr || static_cast<std::size_t>(place) >= _paths.size()) return table;
    ++place;
    path = findPathForFile(name, place);
    if (path.empty()) return nullptr;
  }
}

SymbolTable* SymbolTable::findKnown(const std::string& name) {
  if (SymbolTable* table = findExistingSymbolTable(name); table != nullptr) return table;
  std::string baseName;
  stripPath(name, baseName);
  return findExistingSymbolTable(baseName);
}

SymbolTable* SymbolTable::findAndRead(const char* name) {
  SymbolTable* table = nullptr;
  await(request(name, table));
  return table;
}

SymbolTable::Ticket SymbolTable::request(const char* name, SymbolTable*& result) {
  if (verbose()) std::printf("SymTab:findAndRead %s\n", name);
  if (result = findExistingSymbolTable(name); result != nullptr) {
    if (verbose()) std::printf("SymTab path found %s\n", name);
    return 0;
  }
  if (gMachineFiles.symbolSource) {
    result = new SymbolTable(name, 0, 0);
    result->setSource(gMachineFiles.symbolSource(name));
    return 0;
  }
  if (const Ticket shared = pendingTables.share(name, name, &result); shared != 0) return shared;
  std::string baseName;
  stripPath(name, baseName);
  if (verbose()) std::printf("SymTab:findAndRead %s\n", baseName.c_str());
  if (result = findExistingSymbolTable(baseName); result != nullptr) {
    if (verbose()) std::printf("SymTab file found %s\n", baseName.c_str());
    return 0;
  }
  if (const Ticket shared = pendingTables.share(name, baseName, &result); shared != 0) return shared;
  return requestFile(name, result);
}

SymbolTable::Ticket SymbolTable::requestFile(const char* name, SymbolTable*& result) {
  if (RunWatcher::_current != nullptr) RunWatcher::_current->symbolsWanted(name);
  int place = 0;
  const std::string path = findPathForFile(name, place);
  if (path.empty()) {
    result = emptyTable(name);
    return 0;
  }
  const Ticket ticket = pendingTables.add(name, place, path, &result);
  if (isOrderShown())
    await(ticket);
  else if (isRegular(path.c_str()))
    nmQueue.expect(path, searchAfter(name, place));
  return ticket;
}

void SymbolTable::await(Ticket ticket) {
  pendingTables.load(ticket);
}

int SymbolTable::readFromFile(const char* path) {
  std::FILE* file = std::fopen(path, "r");
  if (file == nullptr) return -1;
  std::setvbuf(file, nullptr, _IOFBF, kReadAhead);
  read(file, gMachineFiles.kernelSymbols == path);
  std::fclose(file);
  return 0;
}

void SymbolTable::read(std::FILE* list, bool kernel) {
  SymbolListReader(*this, list, kernel).read();
}
