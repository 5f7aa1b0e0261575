#include "verbs/Progress.h"

#include <unistd.h>

#include <cstdio>
#include <string>

namespace zelkit {

namespace {

/// A line of progress, which the destructor of its last copy erases.
class Line {
 public:
  explicit Line(const char* what) : _what(what) {}
  ~Line() {
    if (_shown) std::fputs("\r\033[K", stderr);
  }
  Line(const Line&) = delete;
  Line& operator=(const Line&) = delete;

  void show(std::uint64_t done, std::uint64_t all) {
    _shown = true;
    std::fprintf(stderr, "\rzelkit: %s: %d %%", _what.c_str(),
                 static_cast<int>(all == 0 ? 100 : done * 100 / all));
  }

 private:
  std::string _what;
  bool _shown = false;
};

}  // namespace

Recording::Progress progressLine(const char* what) {
  if (isatty(STDERR_FILENO) == 0) return {};
  return
      [line = std::make_shared<Line>(what)](std::uint64_t done, std::uint64_t all) { line->show(done, all); };
}

}  // namespace zelkit
