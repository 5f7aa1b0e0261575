#pragma once

#include <functional>
#include <string>

namespace zelkit {

/// The engine's own exit status for a command line that it cannot use.
constexpr int kEngineUsage = 255;

/// Does the work in a process of its own and takes its result text home. Returns the process's exit status:
/// 0, or 2 after an exception, which was printed. Throws std::runtime_error if the process could not be made
/// or was ended by a signal.
int inChildProcess(const std::function<void(std::string& result)>& work, std::string& result);

}  // namespace zelkit
