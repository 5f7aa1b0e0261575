#include "symbols/NmRun.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "base/OutputFile.h"

namespace {

constexpr int kNotExecuted = 127;

/// Opens a file without a name, which disappears with its last descriptor. Returns -1 on failure.
int openNameless() {
  if (const int inMemory = ::memfd_create("nm", MFD_CLOEXEC); inMemory >= 0) return aboveStandard(inMemory);
  const char* const folder = std::getenv("TMPDIR");
  std::string name = std::string(folder != nullptr ? folder : "/tmp") + "/zelconv-nm-XXXXXX";
  const int descriptor = ::mkostemp(name.data(), O_CLOEXEC);
  if (descriptor >= 0) ::unlink(name.c_str());
  return aboveStandard(descriptor);
}

/// Executes nm, or writes the errno to `held`. Runs in a child that shares its parent's memory until then, so
/// it makes only system calls.
[[noreturn]] void becomeNm(const char* path, int list, int complaints, int held, pid_t parent) {
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (::getppid() != parent) ::_exit(kNotExecuted);
  ::dup2(list, STDOUT_FILENO);
  ::dup2(complaints, STDERR_FILENO);
  const char* const arguments[] = {"nm", "-nCg", path, nullptr};
  ::execvp("nm", const_cast<char* const*>(arguments));
  const int error = errno;
  static_cast<void>(!::write(held, &error, sizeof error));
  ::_exit(kNotExecuted);
}

}  // namespace

NmRun::NmRun(const std::string& path) {
  const int list = openNameless();
  if (list < 0) {
    _error = errno;
    return;
  }
  _list = ::fdopen(list, "r");
  _complaints = openNameless();
  start(path);
}

NmRun::~NmRun() {
  if (_process > 0) ::kill(_process, SIGKILL);
  wait();
  if (_alive >= 0) ::close(_alive);
  if (_complaints >= 0) ::close(_complaints);
  if (_list != nullptr) std::fclose(_list);
}

void NmRun::start(const std::string& path) {
  int ends[2];
  if (::pipe(ends) != 0) {
    _error = errno;
    return;
  }
  _alive = aboveStandard(ends[0]);
  // The only descriptor above 2 that nm inherits: when it is closed, nm has ended.
  const int held = aboveStandard(ends[1]);
  ::fcntl(_alive, F_SETFD, FD_CLOEXEC);
  // An nm that is a script may leave children that hold the other end.
  ::fcntl(_alive, F_SETFL, O_NONBLOCK);
  ::fcntl(held, F_SETFD, 0);
  const pid_t self = ::getpid();
  // Not fork: copying the page tables of a large conversion takes longer than nm over a small library. The
  // child makes only system calls, so sharing the memory until exec does no harm.
  const pid_t process = ::vfork();  // NOLINT(clang-analyzer-security.insecureAPI.vfork)
  // NOLINTNEXTLINE(clang-analyzer-unix.Vfork)
  if (process == 0) becomeNm(path.c_str(), ::fileno(_list), _complaints, held, self);
  if (process < 0) _error = errno;
  ::close(held);
  _process = process;
}

bool NmRun::hasEnded() {
  pollfd alive{_alive, POLLIN, 0};
  // The end of the pipe shows a moment before the process has gone.
  if (_process > 0) reap(::poll(&alive, 1, 0) > 0 ? 0 : WNOHANG);
  return _process <= 0;
}

void NmRun::wait() {
  if (_process > 0) reap(0);
}

void NmRun::reap(int options) {
  pid_t ended = 0;
  do {
    ended = ::waitpid(_process, nullptr, options);
  } while (ended < 0 && errno == EINTR);
  if (ended == 0) return;
  _process = 0;
  static_cast<void>(!::read(_alive, &_error, sizeof _error));
  // nm has moved the file position, which the descriptors share.
  if (_list != nullptr) std::rewind(_list);
}

bool NmRun::listIsEmpty() const {
  struct stat status = {};
  return _list == nullptr || ::fstat(::fileno(_list), &status) != 0 || status.st_size == 0;
}

void NmRun::repeatComplaints() const {
  char text[4096];
  ssize_t count = 0;
  for (off_t at = 0; (count = ::pread(_complaints, text, sizeof text, at)) > 0; at += count)
    if (::write(STDERR_FILENO, text, static_cast<std::size_t>(count)) < 0) return;
}
