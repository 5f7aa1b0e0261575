#pragma once

#include <string>

namespace zelkit {

/// Asks the servers of DEBUGINFOD_URLS for files by their build-id. libdebuginfod is loaded when it is first
/// needed and keeps what it fetched, and what no server has, in its own cache. Without the library or the
/// variable nothing is ever found.
class DebugInfod {
 public:
  enum class Kind { kDebugInformation, kExecutable };

  /// Returns the path of the fetched file, or "".
  static std::string find(const std::string& buildId, Kind kind);
};

}  // namespace zelkit
