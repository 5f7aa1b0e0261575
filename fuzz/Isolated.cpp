#include "Isolated.h"

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>

// The bounds of the section where clang counts the edges taken, and what writes a profile in a build for
// coverage.
extern "C" std::uint8_t __start___sancov_cntrs[] __attribute__((weak));
extern "C" std::uint8_t __stop___sancov_cntrs[] __attribute__((weak));
extern "C" int __llvm_profile_write_file() __attribute__((weak));

namespace {

constexpr unsigned int kMostSeconds = 10;

/// The counters, and a copy that a child can write and its parent read.
class SharedCounters {
 public:
  void publish() const { std::memcpy(_copy, __start___sancov_cntrs, _size); }
  void takeOver() const { std::memcpy(__start___sancov_cntrs, _copy, _size); }

 private:
  std::size_t _size = static_cast<std::size_t>(__stop___sancov_cntrs - __start___sancov_cntrs);
  void* _copy = mmap(nullptr, _size + 1, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
};

}  // namespace

void runIsolated(const std::function<bool()>& run) {
  static const SharedCounters counters;
  const pid_t child = fork();
  if (child == 0) {
    std::signal(SIGALRM, SIG_DFL);
    std::signal(SIGABRT, SIG_DFL);
    alarm(kMostSeconds);
    if (!run()) std::abort();
    counters.publish();
    if (__llvm_profile_write_file != nullptr) __llvm_profile_write_file();
    _exit(0);
  }
  int status = 0;
  pid_t ended = 0;
  do {  // the fuzzer's own timer interrupts the wait now and then
    ended = waitpid(child, &status, 0);
  } while (ended < 0 && errno == EINTR);
  if (ended != child || status != 0) std::abort();
  counters.takeOver();
}
