#include "verbs/Names.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "symbols/CheckedFile.h"
#include "symbols/JitMap.h"
#include "verbs/EngineSymbols.h"
#include "verbs/KernelSymbols.h"

namespace zelkit {

namespace {

std::vector<std::string> joined(std::vector<std::string> first, const std::vector<std::string>& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

/// Returns the bytes of the vDSO of this process, or nothing.
std::string_view ownVdso() {
  std::ifstream maps("/proc/self/maps");
  for (std::string line; std::getline(maps, line);) {
    if (!line.ends_with("[vdso]")) continue;
    std::size_t start = 0;
    std::size_t end = 0;
    if (std::sscanf(line.c_str(), "%zx-%zx", &start, &end) == 2 && start < end)
      // The kernel gives the address as text. NOLINTNEXTLINE(performance-no-int-to-ptr)
      return {reinterpret_cast<const char*>(start), end - start};
  }
  return {};
}

}  // namespace

Names::Names(Source& source, const std::vector<std::string>& folders)
    : _source(source),
      _roots(joined(folders, source.roots())),
      _finder(_roots, source.recording().info().architecture) {
  for (const RecordedFile& file : source.recording().info().files) _recorded.emplace(file.path, &file);
}

const SymbolList& Names::kernel() {
  if (!_kernelRead) readKernel();
  return *_kernel;
}

void Names::readKernel() {
  _kernelRead = true;
  const RecordingInfo& info = _source.recording().info();
  if (const MachineFolder& machine = _source.machine(); !machine.kernelSymbols.empty()) {
    try {
      _kernel = machine.boot.empty() ? _lists.listOfText(readWhole(machine.kernelSymbols), readKernelTable)
                                     : runningKernel(machine);
    } catch (const std::runtime_error& error) {
      _notes.emplace_back(error.what());
    }
  } else if (!info.kernelTable.empty()) {
    _kernel = _lists.listOfText(info.kernelTable, readKernelTable);
  } else if (const RecordedFile* file = recordedFile(RecordingInfo::kKernel); file != nullptr) {
    _kernel = std::make_shared<SymbolList>(listOf(*file));
  }
}

/// Reading the kernel's table takes longer than a small conversion. A table of this boot that was read after
/// the recording was made is as good for it as one that is read now.
std::shared_ptr<const SymbolList> Names::runningKernel(const MachineFolder& machine) {
  std::error_code error;
  const auto recorded = std::filesystem::last_write_time(_source.recording().path(), error);
  return _lists.listSince("kernel-" + machine.boot, error ? std::filesystem::file_time_type::max() : recorded,
                          [&] { return readKernelTable(readWhole(machine.kernelSymbols)); });
}

const RecordedFile* Names::recordedFile(const std::string& path) const {
  const auto found = _recorded.find(path);
  return found != _recorded.end() ? found->second : nullptr;
}

std::optional<FileKnowledge::Link> Names::linkOf(const MappedPiece& piece) {
  if (piece.madeCode) return Link{.inPlace = true};
  if (std::optional<Link> link = linkOfRecorded(piece); link && link->inPlace) return link;
  if (piece.path.empty() || piece.path.front() != '/') return linkOfRecorded(piece);
  const FoundFile& file = _finder.find(piece.path, piece.buildId);
  if (!file.found()) return linkOfRecorded(piece);
  const std::optional<std::uint64_t> address = file.elf.addressOf(piece.offset);
  if (!address) return linkOfRecorded(piece);
  Link link{.address = *address, .fixed = !file.elf.positionIndependent};
  link.stripped = !file.elf.hasSymbolTable && file.debugPath.empty();
  for (const ElfSegment& segment : file.elf.segments)
    if (segment.executable) link.end = std::max(link.end, segment.address + segment.fileSize);
  return link;
}

/// Returns the position of a mapping, from the file's description by Android's recorder.
std::optional<FileKnowledge::Link> Names::linkOfRecorded(const MappedPiece& piece) const {
  const RecordedFile* file = recordedFile(piece.path);
  if (file == nullptr) return std::nullopt;
  Link link;
  if (file->kind == RecordedFile::Kind::symbolMap) {
    link.inPlace = true;
  } else if (file->kind == RecordedFile::Kind::elf) {
    link.address = piece.offset - file->offsetOfLowestAddress + file->lowestAddress;
  } else {
    link.address = piece.offset;
  }
  return link;
}

const Names::Listed& Names::listed(const MappedFile& file) {
  const auto known = _listed.find(&file);
  if (known != _listed.end()) return known->second;
  Listed made;
  try {
    made = make(file);
  } catch (const std::runtime_error& error) {
    _notes.emplace_back(error.what());
    made = {std::make_shared<SymbolList>(), "its file cannot be read"};
  }
  return _listed.emplace(&file, std::move(made)).first->second;
}

Names::Listed Names::make(const MappedFile& file) {
  Listed made = file.pid != 0 ? makeFromJitMap(file) : makeFromFile(file);
  const RecordedFile* recorded = recordedFile(file.path);
  if (made.list->empty() && recorded != nullptr && !recorded->symbols.empty())
    made = {std::make_shared<SymbolList>(listOf(*recorded)), nullptr};
  return made;
}

Names::Listed Names::makeFromJitMap(const MappedFile& file) {
  Listed none = {std::make_shared<SymbolList>(), "it is JIT code without a map"};
  for (const std::string& root : _roots) {
    const std::string path = findJitMap(root, file.pid);
    if (path.empty()) continue;
    std::size_t badLines = 0;
    auto list = std::make_shared<SymbolList>(readJitMap(path, badLines));
    if (badLines != 0) _notes.push_back(path + ": " + std::to_string(badLines) + " lines are damaged");
    return {list, list->empty() ? none.whyEmpty : nullptr};
  }
  return none;
}

Names::Listed Names::makeFromFile(const MappedFile& file) {
  const auto empty = std::make_shared<SymbolList>();
  if (file.path == "[vdso]" && _source.madeHere()) return makeFromVdso(file);
  if (file.path.front() != '/') return {empty, "it has no file"};
  const FoundFile& found = _finder.find(file.path, file.buildId);
  if (!found.refusal.empty() && !_roots.empty()) _notes.push_back(found.refusal);
  if (!found.found()) return {empty, "its file is missing"};
  auto list = _lists.listOf(found);
  return {list, list->empty() ? "its file has no symbols" : nullptr};
}

/// The vDSO is not a file, but zelkit's own process has it too.
Names::Listed Names::makeFromVdso(const MappedFile& file) {
  Listed none = {std::make_shared<SymbolList>(), "it has no file"};
  const std::string_view image = ownVdso();
  if (image.empty()) return none;
  if (!_folder) _folder = std::make_unique<TemporaryFolder>();
  FoundFile found;
  found.path = _folder->path() + "/vdso.so";
  std::ofstream(found.path, std::ios::binary) << image;
  found.elf = ElfFile::read(found.path);
  if (!file.buildId.empty() && found.elf.buildId != file.buildId) return none;
  return {_lists.listOf(found), nullptr};
}

const char* Names::whyUnnamed(const MappedFile& file, std::uint64_t address) {
  const Listed& found = listed(file);
  if (found.whyEmpty != nullptr) return found.whyEmpty;
  const std::size_t index = found.list->find(address);
  if (index != found.list->size() && found.list->isNamed(index)) return nullptr;
  return "its file has no symbol there";
}

const char* Names::whyKernelUnnamed(std::uint64_t address) {
  const SymbolList& list = kernel();
  if (list.empty()) return "the kernel's symbols are missing";
  return list.find(address) != list.size() ? nullptr : "the kernel has no symbol there";
}

std::unique_ptr<SymbolSource> Names::sourceOf(const MappedFile& file) {
  return engineSymbols(*listed(file).list, file);
}

std::unique_ptr<SymbolSource> Names::kernelSource(std::uint64_t start) {
  return engineKernelSymbols(kernel(), start);
}

}  // namespace zelkit
