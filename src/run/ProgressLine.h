#pragma once

#include <chrono>
#include <string>

/// One line on standard error's terminal that is overwritten at each update and erased at the end. It appears
/// only if a run takes long.
class ProgressLine {
 public:
  /// Returns the milliseconds until the line may be shown or updated; 0 if it may be now.
  int due() const;

  /// Shows the text, truncated to the width of the terminal, unless it is shown already.
  void show(const std::string& text);

  /// Erases the line. Required before any other line is printed.
  void clear();

 private:
  using Clock = std::chrono::steady_clock;

  Clock::time_point _next = Clock::now() + std::chrono::milliseconds(500);
  std::string _shown;  ///< the text on the terminal
};
