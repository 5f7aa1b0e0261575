// The loading half of SymbolTable: finding a file along the search path, running nm and reading what it
// prints.

#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <optional>

#include "base/MachineFiles.h"
#include "base/RunWatcher.h"
#include "run/KernelLog.h"
#include "run/Settings.h"
#include "symbols/SymbolListReader.h"
#include "symbols/SymbolTable.h"

namespace {

/// The place of the search path that stands for no directory: checkFile strips leading blanks.
constexpr const char* kNoDirectory = " ";

constexpr std::size_t kFewestUsefulSymbols = 2;
constexpr std::size_t kReadAhead = std::size_t{64} * 1024;

/// One run of nm over a file, and what it prints. Mangled names are demangled, only external symbols are
/// listed, and they come in numeric order. No shell sees the file's name, and the list passes through a pipe:
/// nobody can read a command into the one or put a file of his own in the place of the other.
class NmRun {
 public:
  explicit NmRun(const char* path) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return;
    const char* const argv[] = {"nm", "-nCg", path, nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    // Who watches is told what came of it, and does not want nm's own words in between, one line a library.
    const bool isSilent = RunWatcher::_current != nullptr && gVerbosity == 0;
    const int silence = isSilent ? ::open("/dev/null", O_WRONLY | O_CLOEXEC) : -1;
    if (silence >= 0) posix_spawn_file_actions_adddup2(&actions, silence, STDERR_FILENO);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    const int error =
        posix_spawnp(&_process, "nm", &actions, nullptr, const_cast<char* const*>(argv), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(ends[1]);
    if (silence >= 0) ::close(silence);
    _list = fdopen(ends[0], "r");
    if (RunWatcher* const watcher = RunWatcher::_current; watcher != nullptr)
      error == 0 ? watcher->nmStarted(path, ends[0]) : watcher->nmNotStarted(error);
    if (error == 0) return;
    _process = 0;
    if (gVerbosity > 0) std::fprintf(stderr, "nm: %s\n", std::strerror(error));
  }
  ~NmRun() {
    if (_list != nullptr) std::fclose(_list);
    if (_process > 0) waitpid(_process, nullptr, 0);
  }
  NmRun(const NmRun&) = delete;
  NmRun& operator=(const NmRun&) = delete;

  /// Waits until nm begins its list or ends. As it sorts, it has said by then what it has to say of the file.
  void await() const {
    if (_list != nullptr) std::ungetc(std::fgetc(_list), _list);
  }

  /// Null if there is none. A failure of nm leaves the list empty, and the search goes on elsewhere.
  std::FILE* list() const { return _list; }

 private:
  pid_t _process = 0;
  std::FILE* _list = nullptr;
};

bool isRegular(const char* path) {
  struct stat status {};
  return stat(path, &status) == 0 && S_ISREG(status.st_mode);
}

/// Whether opening the file could do more than open it. A socket cannot be opened, so trying does no harm.
bool isSpecial(const char* path) {
  struct stat status {};
  return stat(path, &status) == 0 && !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode) &&
         !S_ISSOCK(status.st_mode);
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
  if (gVerbosity > 0) std::printf("checkFile %s=%d:%d\n", result.c_str(), fd, errno);
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
  if (gVerbosity > 0) std::printf("SymbolTable:generateAndRead %s\n", path);
  writeMarker(path);
  std::optional<NmRun> nm;
  if (isRegular(path)) nm.emplace(path).await();
  // After nm, so that the lines of a verbose run come after nm's own.
  auto* table = new SymbolTable(path, 0, 0);
  if (nm && nm->list() != nullptr) table->read(nm->list(), false);
  if (nm && RunWatcher::_current != nullptr)
    RunWatcher::_current->symbolsRead(path, table->elements().size());
  return table->elements().size() < kFewestUsefulSymbols ? nullptr : table;
}

SymbolTable* SymbolTable::findAndRead(const char* name) {
  if (gVerbosity > 0) std::printf("SymTab:findAndRead %s\n", name);
  if (SymbolTable* table = findExistingSymbolTable(name); table != nullptr) {
    if (gVerbosity > 0) std::printf("SymTab path found %s\n", name);
    return table;
  }
  if (gMachineFiles.addSymbols) {
    auto* table = new SymbolTable(name, 0, 0);
    gMachineFiles.addSymbols(name, *table);
    return table;
  }
  std::string baseName;
  stripPath(name, baseName);
  if (gVerbosity > 0) std::printf("SymTab:findAndRead %s\n", baseName.c_str());
  if (SymbolTable* table = findExistingSymbolTable(baseName); table != nullptr) {
    if (gVerbosity > 0) std::printf("SymTab file found %s\n", baseName.c_str());
    return table;
  }

  if (RunWatcher::_current != nullptr) RunWatcher::_current->symbolsWanted(name);
  int index = 0;
  std::string path = findPathForFile(name, index);
  if (path.empty()) return emptyTable(name);
  while (true) {
    if (gVerbosity > 0) std::printf("SymbolTable:findAndRead %s\n", path.c_str());
    SymbolTable* table = generateAndRead(path.c_str());
    if (table != nullptr || static_cast<std::size_t>(index) >= _paths.size()) return table;
    ++index;
    path = findPathForFile(name, index);
    if (path.empty()) return nullptr;
  }
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
