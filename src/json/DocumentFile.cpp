#include "json/DocumentFile.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <utility>

#include "base/OutputFile.h"

namespace {

/// Signals that end the program while it writes: from a user, a terminal, a limit of the file size.
constexpr std::array kSignals = {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGXFSZ};

/// Descriptor of the file that a signal has to empty, or -1.
volatile std::sig_atomic_t unfinishedFile = -1;

/// Anything but a file on a disk, such as a pipe, stays as it is.
void makeEmpty(int descriptor) {
  [[maybe_unused]] const int result = ::ftruncate(descriptor, 0);
}

/// The signal's default action is restored by now and ends the program as soon as this returns.
void emptyFileAndEnd(int signal) {
  makeEmpty(unfinishedFile);
  std::raise(signal);
}

/// During its lifetime a signal that ends the program empties the file first. A signal that is ignored stays
/// ignored.
class Unfinished {
 public:
  explicit Unfinished(int descriptor) {
    unfinishedFile = descriptor;
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
      sigaction(kSignals[i], nullptr, &_before[i]);
      if (_before[i].sa_handler != SIG_DFL) continue;
      struct sigaction action = {};
      action.sa_handler = emptyFileAndEnd;
      action.sa_flags = static_cast<int>(SA_RESETHAND);
      sigaction(kSignals[i], &action, nullptr);
    }
  }
  ~Unfinished() {
    for (std::size_t i = 0; i < kSignals.size(); ++i) sigaction(kSignals[i], &_before[i], nullptr);
  }
  Unfinished(const Unfinished&) = delete;
  Unfinished& operator=(const Unfinished&) = delete;

 private:
  std::array<struct sigaction, kSignals.size()> _before{};
};

/// Returns 0, or the errno of what failed.
int writeAll(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = ::write(descriptor, text.data(), text.size());
    if (written >= 0) {
      text.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno != EINTR) {
      return errno;
    }
  }
  return 0;
}

}  // namespace

DocumentFile::~DocumentFile() {
  close();
}

int DocumentFile::open(const char* name) {
  close();
  _name = name;
  _descriptor = openOutputFile(name);
  return _descriptor < 0 ? errno : 0;
}

int DocumentFile::write(std::span<const std::string_view> pieces) {
  const Unfinished unfinished(_descriptor);
  int error = 0;
  for (const std::string_view piece : pieces)
    if (error == 0) error = writeAll(_descriptor, piece);
  if (error != 0) makeEmpty(_descriptor);
  const int closeError = close();
  if (closeError == 0) return error;
  // A network file system may report only now that the disk is full.
  [[maybe_unused]] const int result = ::truncate(_name.c_str(), 0);
  return closeError;
}

int DocumentFile::close() {
  const int descriptor = std::exchange(_descriptor, -1);
  return descriptor >= 0 && ::close(descriptor) != 0 ? errno : 0;
}
