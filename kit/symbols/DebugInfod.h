#pragma once

#include <string>

namespace zelkit {

/// Requests files by build-id from the servers in DEBUGINFOD_URLS. libdebuginfod is loaded on first use and
/// caches fetched files and failures itself. Without the library or the variable nothing is found.
class DebugInfod {
 public:
  enum class Kind { kDebugInformation, kExecutable };

  /// Returns the path of the fetched file, or "".
  static std::string find(const std::string& buildId, Kind kind);
};

}  // namespace zelkit
