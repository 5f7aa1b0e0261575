#include "document/ProfileTables.h"

#include <tuple>

namespace zelkit {

namespace {

/// The key of the kernel's library in every document with libraries.
constexpr std::uint32_t kKernelLibrary = 3;

template <typename Table>
auto find(const Table& table, std::uint32_t key) -> decltype(&table.begin()->second) {
  const auto found = table.find(key);
  return found == table.end() ? nullptr : &found->second;
}

}  // namespace

void ProfileTables::process(const ProcessRow& row) {
  _processes[row.key] = {row.pid, row.tid, std::string(row.name)};
  if (row.pid == row.tid) _mainNames[row.pid] = row.name;
}

void ProfileTables::library(const LibraryRow& row) {
  _libraries[row.key] = {row.pidKey, std::string(row.name), row.start, row.size};
}

void ProfileTables::file(const FileRow& row) {
  for (const SourceLine& line : row.functions)
    _sourceLines[line.functionKey] = {std::string(row.name), line.line};
}

void ProfileTables::function(const FunctionRow& row) {
  Function& function = _functions[row.key];
  function = {
      std::string(row.name), row.start, row.size, {row.libraryKeys.begin(), row.libraryKeys.end()}, {}, 0};
  if (const auto* place = find(_sourceLines, row.key); place != nullptr)
    std::tie(function.file, function.line) = *place;
}

const ProfileTables::Process* ProfileTables::findProcess(std::uint32_t key) const {
  return find(_processes, key);
}

const ProfileTables::Library* ProfileTables::findLibrary(std::uint32_t key) const {
  return find(_libraries, key);
}

const ProfileTables::Function* ProfileTables::findFunction(std::uint32_t key) const {
  return find(_functions, key);
}

std::string ProfileTables::processName(std::uint32_t key) const {
  const Process* process = findProcess(key);
  if (process == nullptr) return "[unknown]";
  const std::string* main = find(_mainNames, process->pid);
  return main != nullptr ? *main : process->name;
}

std::string ProfileTables::frameName(std::uint32_t key) const {
  if (const Function* function = findFunction(key); function != nullptr) return function->name;
  const Library* library = findLibrary(key);
  return library != nullptr ? "[in " + library->name + "]" : "[unknown]";
}

const ProfileTables::Library* ProfileTables::libraryOf(std::uint32_t key) const {
  const Function* function = findFunction(key);
  if (function == nullptr) return findLibrary(key);
  return function->libraryKeys.empty() ? nullptr : findLibrary(function->libraryKeys.front());
}

ProfileTables::Origin ProfileTables::originOf(std::uint32_t key) const {
  const Function* function = findFunction(key);
  if (function != nullptr && !function->file.empty()) return {function->file, function->line};
  const Library* library = libraryOf(key);
  return library == nullptr ? Origin{} : Origin{library->name, 0};
}

/// Functions of a program and of the kernel have absolute addresses in a document, others begin relative to
/// their library.
std::uint64_t ProfileTables::Library::offsetOf(const Function& function) const {
  return function.start - start <= size ? function.start - start : function.start;
}

bool ProfileTables::isKernel(std::uint32_t key) const {
  const Library* library = libraryOf(key);
  return library != nullptr && library == findLibrary(kKernelLibrary);
}

}  // namespace zelkit
