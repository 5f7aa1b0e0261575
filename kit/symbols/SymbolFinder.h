/// Where a file that a recording names lies now: below the roots that the user gave, and only if it is that
/// file.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "symbols/ElfFile.h"

namespace zelkit {

/// The outcome of one search. Either `path` names a file, or `refusal` says why there is none.
struct FoundFile {
  std::string path;
  ElfFile elf;  ///< the headers of `path`
  /// The separate debug file of the same build-id, or the only file there is besides; empty if there is none.
  std::string debugPath;
  /// One line without a line end, such as "/lib/libc.so.6: build-id 12ab... differs from the recording's
  /// 34cd...".
  std::string refusal;

  [[nodiscard]] bool found() const { return !path.empty(); }
};

/// Looks a recorded path up below each root in turn: as it stands, then by its last component, then by
/// build-id
/// (".build-id/ab/cdef" with ".debug", "/elf" or "/debug" behind it, also below "usr/lib/debug"). Links are
/// resolved as if the root were "/". Files of another build-id than the recorded one are passed over, and
/// told if no other file is found. Separate debug files are searched by build-id, then by .gnu_debuglink and
/// its checksum. When DEBUGINFOD_URLS is set and libdebuginfod is installed, what is still missing is asked
/// for there.
class SymbolFinder {
 public:
  /// `roots`: folders such as a capture's copy of the target, a folder of unstripped libraries, or "/".
  explicit SymbolFinder(std::vector<std::string> roots) : _roots(std::move(roots)) {}

  /// Returns the outcome for a recorded path and build-id (hexadecimal; empty if it is not known). Each pair
  /// is searched once. The reference stays valid as long as the finder.
  const FoundFile& find(const std::string& recordedPath, const std::string& buildId);

  [[nodiscard]] const std::vector<std::string>& roots() const { return _roots; }

 private:
  [[nodiscard]] FoundFile search(const std::string& recordedPath, const std::string& buildId) const;

  std::vector<std::string> _roots;
  std::map<std::pair<std::string, std::string>, FoundFile> _outcomes;
};

}  // namespace zelkit
