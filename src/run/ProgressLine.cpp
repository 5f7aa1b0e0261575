#include "run/ProgressLine.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <utility>

namespace {

constexpr std::chrono::milliseconds kBetween(100);
constexpr std::size_t kUsualWidth = 80;

std::size_t terminalWidth() {
  winsize size{};
  return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : kUsualWidth;
}

}  // namespace

int ProgressLine::due() const {
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(_next - Clock::now());
  return static_cast<int>(std::max<std::chrono::milliseconds::rep>(left.count(), 0));
}

void ProgressLine::show(const std::string& text) {
  // A line that fills the last column would wrap to the next line.
  std::string line = text.substr(0, terminalWidth() - 1);
  if (line == _shown) return;
  std::fprintf(stderr, "\r%-*s", static_cast<int>(_shown.size()), line.c_str());
  _shown = std::move(line);
  _next = Clock::now() + kBetween;
}

void ProgressLine::clear() {
  // Overwritten with blanks, as not every terminal has a command to erase a line.
  if (!_shown.empty()) std::fprintf(stderr, "\r%*s\r", static_cast<int>(_shown.size()), "");
  _shown.clear();
}
