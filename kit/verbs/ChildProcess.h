#pragma once

#include <functional>
#include <string>

namespace zelkit {

/// The engine's exit status for an invalid command line.
constexpr int kEngineUsage = 255;

/// Runs `work` in a child process and returns its exit status: 0, or 2 after an exception, which is printed.
/// Sets `result` to the text that `work` sets there. Throws std::runtime_error if the process cannot be
/// created or was ended by a signal.
int inChildProcess(const std::function<void(std::string& result)>& work, std::string& result);

}  // namespace zelkit
