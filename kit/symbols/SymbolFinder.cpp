#include "symbols/SymbolFinder.h"

#include <elf.h>
#include <zlib.h>

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <string_view>

#include "symbols/BuildId.h"
#include "symbols/CheckedFile.h"
#include "symbols/DebugInfod.h"

namespace zelkit {

namespace {

/// Returns whether a mapping's name can be that of a file.
bool isFileName(std::string_view name) {
  for (const std::string_view other :
       {"[", "//", "/dev/", "/memfd:", "/SYSV", "/anon_hugepage", "anon_inode:"})
    if (name.starts_with(other)) return false;
  return !name.empty() && name.back() != '/';
}

std::string_view withoutDeletedMark(std::string_view name) {
  return name.substr(0, name.rfind(" (deleted)"));
}

std::string_view folderOf(std::string_view path) {
  const std::size_t slash = path.rfind('/');
  return path.substr(0, slash == std::string_view::npos ? 0 : slash + 1);
}

/// Returns whether programs of the file's architecture run on the machine; true for an unknown machine.
bool runsOn(std::string_view architecture, std::uint16_t machine) {
  if (architecture == "x86_64") return machine == EM_X86_64 || machine == EM_386;
  if (architecture == "aarch64") return machine == EM_AARCH64 || machine == EM_ARM;
  if (architecture.starts_with("arm")) return machine == EM_ARM;
  if (architecture.size() == 4 && architecture.ends_with("86")) return machine == EM_386;
  return true;
}

/// Returns a build-id in the form of folders of links, "ab/cdef"; empty if it is too short.
std::string linkName(const std::string& buildId) {
  return buildId.size() > 2 ? buildId.substr(0, 2) + '/' + buildId.substr(2) : "";
}

/// Returns what a second file of a build adds to the first: lines count more than local names.
int gain(const ElfFile& first, const ElfFile& second) {
  return (second.hasLines && !first.hasLines ? 2 : 0) +
         (second.hasSymbolTable && !first.hasSymbolTable ? 1 : 0);
}

/// Returns whether two files may be of one build.
bool sameBuild(const ElfFile& a, const ElfFile& b) {
  if (a.machine != b.machine || a.wide != b.wide) return false;
  if (!a.buildId.empty() || !b.buildId.empty()) return a.buildId == b.buildId;
  return a.segments == b.segments;
}

bool hasChecksum(const std::string& path, std::uint32_t checksum) {
  const std::string content = readWhole(path);
  return crc32_z(0, reinterpret_cast<const Bytef*>(content.data()), content.size()) == checksum;
}

/// One search and its state.
class Search {
 public:
  Search(const std::vector<std::string>& roots, std::vector<FolderIndex>& indexes,
         const std::string& architecture, const std::string& name, const std::string& buildId)
      : _roots(roots), _indexes(indexes), _architecture(architecture), _name(name), _buildId(buildId) {}

  FoundFile run() {
    for (const std::string& root : _roots) lookBelow(root);
    if (!hasEverything()) lookAnywhere();
    if (!hasEverything()) lookForDebugFiles();
    if (!hasEverything()) askServers();
    if (!_outcome.found()) _outcome.refusal = refusal();
    return std::move(_outcome);
  }

 private:
  void lookBelow(const std::string& root) {
    if (hasEverything()) return;
    consider(root, _name);
    consider(root, _name.substr(folderOf(_name).size()));
    const std::string link = linkName(_buildId);
    if (link.empty()) return;
    consider(root, ".build-id/" + link);
    consider(root, ".build-id/" + link + "/elf");
  }

  /// Without build-ids, files of one name cannot be distinguished; then the name must be unique.
  void lookAnywhere() {
    const std::string baseName = _name.substr(folderOf(_name).size());
    for (std::size_t i = 0; i < _roots.size(); ++i) {
      const std::vector<std::string>& paths = _indexes[i].pathsOf(baseName);
      if (paths.size() > 1 && !_outcome.found() && _buildId.empty()) {
        refuse(std::to_string(paths.size()) + " files of this name below " + _roots[i]);
      } else {
        for (const std::string& path : paths) consider(_roots[i], path);
      }
    }
  }

  /// Uses a file as the wanted one, or as an addition to it.
  void consider(const std::string& root, const std::string& name) {
    const std::optional<Candidate> candidate = open(resolveBelow(root, name));
    if (!candidate) return;
    if (!_outcome.found()) {
      if (fits(*candidate)) take(*candidate);
    } else if (sameBuild(_outcome.elf, candidate->elf)) {
      add(*candidate);
    }
  }

  void lookForDebugFiles() {
    const bool known = _outcome.found() && !_outcome.elf.buildId.empty();
    const std::string link = linkName(known ? _outcome.elf.buildId : _buildId);
    const std::vector<std::string> linkedNames = debugLinkNames();
    for (const std::string& root : _roots) {
      if (!link.empty()) {
        considerDebugFile(root, "usr/lib/debug/.build-id/" + link + ".debug");
        considerDebugFile(root, ".build-id/" + link + ".debug");
        considerDebugFile(root, ".build-id/" + link + "/debug");
      }
      for (const std::string& name : linkedNames) considerDebugLink(root, name);
    }
  }

  /// A debug file found by build-id may also replace the file.
  void considerDebugFile(const std::string& root, const std::string& name) {
    const std::optional<Candidate> candidate = open(resolveBelow(root, name));
    if (!candidate ||
        !sameBuildId(_outcome.found() ? _outcome.elf.buildId : _buildId, candidate->elf.buildId))
      return;
    if (_outcome.found()) {
      add(*candidate);
    } else if (fits(*candidate)) {
      take(*candidate);
    }
  }

  /// Returns the paths at which the file of the debug link may be.
  [[nodiscard]] std::vector<std::string> debugLinkNames() const {
    if (!_outcome.found() || _outcome.elf.debugLink.empty()) return {};
    const std::string& link = _outcome.elf.debugLink;
    const std::string folder(folderOf(_name));
    return {folder + link, folder + ".debug/" + link, "usr/lib/debug/" + folder + link, link};
  }

  void considerDebugLink(const std::string& root, const std::string& name) {
    const std::optional<Candidate> candidate = open(resolveBelow(root, name));
    if (!candidate || gain(_outcome.elf, candidate->elf) <= _gain) return;
    const bool sure = !_outcome.elf.buildId.empty() && _outcome.elf.buildId == candidate->elf.buildId;
    if (sure || hasChecksum(candidate->path, _outcome.elf.debugLinkCrc)) add(*candidate);
  }

  void askServers() {
    const std::string& buildId = _outcome.found() ? _outcome.elf.buildId : _buildId;
    for (const auto kind : {DebugInfod::Kind::kDebugInformation, DebugInfod::Kind::kExecutable}) {
      if (_outcome.found() && kind == DebugInfod::Kind::kExecutable) return;
      const std::optional<Candidate> candidate = open(DebugInfod::find(buildId, kind));
      if (!candidate) continue;
      if (_outcome.found()) {
        add(*candidate);
      } else if (fits(*candidate)) {
        take(*candidate);
      }
    }
  }

  struct Candidate {
    std::string path;
    ElfFile elf;
  };

  std::optional<Candidate> open(const std::string& path) {
    if (path.empty() || path == _outcome.path || path == _outcome.debugPath) return {};
    try {
      return Candidate{path, ElfFile::read(path)};
    } catch (const std::runtime_error& error) {
      refuse(error.what());
      return {};
    }
  }

  /// Returns whether the file may be the recorded one; otherwise keeps the reason.
  bool fits(const Candidate& candidate) {
    const ElfFile& elf = candidate.elf;
    if (!runsOn(_architecture, elf.machine)) {
      refuse(candidate.path + " is not for " + _architecture);
      return false;
    }
    if (_buildId.empty() || sameBuildId(_buildId, elf.buildId)) return true;
    refuse(candidate.path + " has " + (elf.buildId.empty() ? "no build-id" : "build-id " + elf.buildId) +
           " instead of " + _buildId);
    return false;
  }

  void take(const Candidate& candidate) {
    _outcome.path = candidate.path;
    _outcome.elf = candidate.elf;
  }

  void add(const Candidate& candidate) {
    const int gained = gain(_outcome.elf, candidate.elf);
    if (gained <= _gain) return;
    _gain = gained;
    _outcome.debugPath = candidate.path;
    _debugFile = candidate.elf;
  }

  [[nodiscard]] bool hasEverything() const {
    return _outcome.found() && (_outcome.elf.hasLines || _debugFile.hasLines) &&
           (_outcome.elf.hasSymbolTable || _debugFile.hasSymbolTable);
  }

  void refuse(const std::string& reason) {
    if (std::find(_reasons.begin(), _reasons.end(), reason) == _reasons.end()) _reasons.push_back(reason);
  }

  [[nodiscard]] std::string refusal() const {
    std::string text = _name + ": ";
    if (_reasons.empty()) text += _roots.empty() ? "no folder to look in" : "not found below";
    const std::vector<std::string>& list = _reasons.empty() ? _roots : _reasons;
    for (std::size_t i = 0; i < list.size(); ++i)
      text += (i > 0 ? "; " : _reasons.empty() ? " " : "") + list[i];
    return text;
  }

  const std::vector<std::string>& _roots;
  std::vector<FolderIndex>& _indexes;
  const std::string& _architecture;
  const std::string& _name;
  const std::string& _buildId;
  FoundFile _outcome;
  ElfFile _debugFile;  ///< headers of _outcome.debugPath
  int _gain = 0;       ///< what that file adds
  std::vector<std::string> _reasons;
};

}  // namespace

SymbolFinder::SymbolFinder(std::vector<std::string> roots, std::string architecture)
    : _roots(std::move(roots)),
      _architecture(std::move(architecture)),
      _indexes(_roots.begin(), _roots.end()) {}

const FoundFile& SymbolFinder::find(const std::string& recordedPath, const std::string& buildId) {
  const auto [place, isNew] = _outcomes.try_emplace({recordedPath, buildId});
  if (!isNew) return place->second;
  const std::string name(withoutDeletedMark(recordedPath));
  if (!isFileName(name)) {
    place->second.refusal = recordedPath + ": not a file";
  } else {
    place->second = Search(_roots, _indexes, _architecture, name, buildId).run();
  }
  return place->second;
}

}  // namespace zelkit
