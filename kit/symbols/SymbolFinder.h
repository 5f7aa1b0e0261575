/// Where a file that a recording names lies now: below the roots that the user gave, and only if it is that
/// file.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "symbols/ElfFile.h"
#include "symbols/FolderIndex.h"

namespace zelkit {

/// The outcome of one search. Either `path` names a file, or `refusal` says why there is none.
struct FoundFile {
  std::string path;
  ElfFile elf;  ///< the headers of `path`
  /// A file of the same build that holds more: a separate debug file or an unstripped copy. Empty if there is
  /// none.
  std::string debugPath;
  /// One line without a line end, such as "/lib/libx.so: FILE has build-id 12ab instead of 34cd".
  std::string refusal;

  [[nodiscard]] bool found() const { return !path.empty(); }
};

/// Looks a recorded path up below each root in turn: as it is, then by its last component, then by build-id
/// (".build-id/ab/cdef", with "/elf" behind it in perf's own cache); then, below each root, any file of its
/// name. Links are resolved as if the root were "/". Files of another build-id than the recorded one, or of
/// another architecture, are passed over, and told if no other file is found.
///
/// What a stripped file lacks comes from another copy of the same build below a later root, or from its debug
/// file: below each root "usr/lib/debug/.build-id/ab/cdef.debug", ".build-id/ab/cdef.debug" and
/// ".build-id/ab/cdef/debug", or the name in .gnu_debuglink beside the file, in ".debug" beside it, below
/// "usr/lib/debug" or in the root itself, if its checksum agrees. A debug file is also taken where the file
/// itself is missing. When DEBUGINFOD_URLS is set, what is still missing is asked for there: only ask for
/// files that samples touch.
class SymbolFinder {
 public:
  /// `roots`: folders such as a capture's copy of the target, a folder of unstripped libraries, or "/".
  /// `architecture`: that of the recording as "uname -m" prints it, empty if it is not known.
  explicit SymbolFinder(std::vector<std::string> roots, std::string architecture = {});

  /// Returns the outcome for a recorded path and build-id (hexadecimal; empty if it is not known). Each pair
  /// is searched once. The reference stays valid as long as the finder.
  const FoundFile& find(const std::string& recordedPath, const std::string& buildId);

 private:
  std::vector<std::string> _roots;
  std::string _architecture;
  std::vector<FolderIndex> _indexes;  ///< of the roots
  std::map<std::pair<std::string, std::string>, FoundFile> _outcomes;
};

}  // namespace zelkit
