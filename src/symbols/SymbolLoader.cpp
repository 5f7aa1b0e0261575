// The loading half of SymbolTable: finding a file along the search path, running nm and reading what it
// prints.

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "run/MachineFiles.h"
#include "run/Settings.h"
#include "run/TimeBase.h"
#include "symbols/SymbolListReader.h"
#include "symbols/SymbolTable.h"

namespace {

/// The place of the search path that stands for no directory: checkFile strips leading blanks.
constexpr const char* kNoDirectory = " ";

constexpr std::size_t kFewestUsefulSymbols = 2;

/// A path as one word of the shell. A file name in a recording must never run a command.
std::string shellWord(const std::string& path) {
  constexpr const char* plain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789/._-+,:@%=";
  if (path.find_first_not_of(plain) == std::string::npos) return path;
  std::string word = "'";
  for (const char c : path) {
    if (c == '\'') {
      word += "'\\''";
    } else {
      word += c;
    }
  }
  return word + "'";
}

/// A fresh file of this run's own, so that two runs at once do not disturb each other and nobody can plant a
/// link at a name known beforehand. The name is empty if the file cannot be made.
class PrivateFile {
 public:
  explicit PrivateFile(const std::string& nameBeside) : _name(nameBeside + ".XXXXXX") {
    const int fd = mkstemp(_name.data());
    if (fd < 0) {
      _name.clear();
    } else {
      ::close(fd);
    }
  }
  ~PrivateFile() {
    if (!_name.empty()) unlink(_name.c_str());
  }
  PrivateFile(const PrivateFile&) = delete;
  PrivateFile& operator=(const PrivateFile&) = delete;

  const std::string& name() const { return _name; }

 private:
  std::string _name;
};

/// Runs the command as system does. A device without /bin/sh has its shell where Android keeps it. What comes
/// of the command is not looked at.
void runCommand(const std::string& command) {
  constexpr const char* androidShell = "/system/bin/sh";
  if (access("/bin/sh", X_OK) == 0 || access(androidShell, X_OK) != 0) {
    [[maybe_unused]] const int status = std::system(command.c_str());
    return;
  }
  const char* const argv[] = {"sh", "-c", command.c_str(), nullptr};
  pid_t child = 0;
  if (posix_spawn(&child, androidShell, nullptr, nullptr, const_cast<char* const*>(argv), environ) == 0)
    waitpid(child, nullptr, 0);
}

/// Mangled names are demangled, only external symbols are listed, and they come in numeric order.
void runNm(const char* path, const std::string& output) {
  if (output.empty()) return;
  // A failure leaves the list empty, and the search goes on elsewhere.
  runCommand("nm -nCg " + shellWord(path) + " > " + shellWord(output));
}

}  // namespace

void SymbolTable::setPath(const std::string& path) {
  _paths.assign(1, kNoDirectory);
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
  // Without waiting: a recording may name a pipe that nobody writes to.
  const int fd = ::open(result.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (gVerbosity > 0) std::printf("checkFile %s=%d:%d\n", result.c_str(), fd, errno);
  if (fd < 0) return 0;
  ::close(fd);
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
  const PrivateFile list(gMachineFiles.symbolList);
  runNm(path, list.name());
  auto* table = new SymbolTable(path, 0, 0);
  table->readFromFile(list.name().c_str());
  return table->_elements.size() < kFewestUsefulSymbols ? nullptr : table;
}

SymbolTable* SymbolTable::findAndRead(const char* name) {
  if (gVerbosity > 0) std::printf("SymTab:findAndRead %s\n", name);
  if (SymbolTable* table = findExistingSymbolTable(name); table != nullptr) {
    if (gVerbosity > 0) std::printf("SymTab path found %s\n", name);
    return table;
  }
  std::string baseName;
  stripPath(name, baseName);
  if (gVerbosity > 0) std::printf("SymTab:findAndRead %s\n", baseName.c_str());
  if (SymbolTable* table = findExistingSymbolTable(baseName); table != nullptr) {
    if (gVerbosity > 0) std::printf("SymTab file found %s\n", baseName.c_str());
    return table;
  }

  int index = 0;
  std::string path = findPathForFile(name, index);
  if (path.empty()) return new SymbolTable(name, 0, 0);
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
  SymbolListReader(*this, file, gMachineFiles.kernelSymbols == path).read();
  std::fclose(file);
  return 0;
}
