#pragma once

#include <chrono>
#include <string>

/// One line on the terminal of standard error that is written over again and again, and leaves nothing
/// behind. It appears only when a run takes long enough for one to wonder.
class ProgressLine {
 public:
  /// Milliseconds until the line may be shown, or be shown anew; 0 if it may be now.
  int due() const;

  /// Shows the text now, cut to the width of the terminal, unless it is there already.
  void show(const std::string& text);

  /// Takes the line away. Other lines must not come before that.
  void clear();

 private:
  using Clock = std::chrono::steady_clock;

  Clock::time_point _next = Clock::now() + std::chrono::milliseconds(500);
  std::string _shown;  ///< what is on the terminal
};
