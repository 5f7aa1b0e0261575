/// Finds the files named by a recording below the roots given by the user, and verifies that they are the
/// recorded ones.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "symbols/ElfFile.h"
#include "symbols/FolderIndex.h"

namespace zelkit {

/// The result of one search: either `path` is set, or `refusal` says why not.
struct FoundFile {
  std::string path;
  ElfFile elf;  ///< the headers of `path`
  /// A file of the same build with more symbols: a separate debug file or an unstripped copy. Empty if there
  /// is none.
  std::string debugPath;
  /// One line without a line end, such as "/lib/libx.so: FILE has build-id 12ab instead of 34cd".
  std::string refusal;

  [[nodiscard]] bool found() const { return !path.empty(); }
};

/// Searches for a recorded path below each root in turn: the whole path, its last component, the build-id
/// (".build-id/ab/cdef", followed by "/elf" in perf's cache); then, below each root, for any file of its
/// name. Links are resolved as if the root were "/". Files of another build-id or architecture than the
/// recorded one are skipped, and reported if no other file is found.
///
/// What a stripped file lacks is taken from another copy of the same build below a later root, or from its
/// debug file: below each root "usr/lib/debug/.build-id/ab/cdef.debug", ".build-id/ab/cdef.debug" and
/// ".build-id/ab/cdef/debug", or the name in .gnu_debuglink in the file's folder, in its subfolder ".debug",
/// below "usr/lib/debug" or in the root itself, if its checksum matches. A debug file is also used if the
/// file itself is missing. If DEBUGINFOD_URLS is set, missing files are requested there, so find should be
/// called only for files hit by samples.
class SymbolFinder {
 public:
  /// `roots`: folders such as a capture's copy of the target, a folder of unstripped libraries, or "/".
  /// `architecture`: that of the recording, as printed by "uname -m", or empty if unknown.
  explicit SymbolFinder(std::vector<std::string> roots, std::string architecture = {});

  /// Returns the result for a recorded path and build-id (hexadecimal; empty if unknown). Each pair is
  /// searched for once. The reference is valid as long as the finder.
  const FoundFile& find(const std::string& recordedPath, const std::string& buildId);

 private:
  std::vector<std::string> _roots;
  std::string _architecture;
  std::vector<FolderIndex> _indexes;  ///< of the roots
  std::map<std::pair<std::string, std::string>, FoundFile> _outcomes;
};

}  // namespace zelkit
