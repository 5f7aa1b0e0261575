#include "Isolated.h"

#include <sys/mman.h>
#include <sys/resource.h>
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
// The fuzzer's record of what its target compares. It begins with plain tables of the latest operands, out of
// which the fuzzer makes inputs that pass a comparison: it finds a constant of 32 bits in some 30,000 runs.
extern "C" char fuzzerTracing[] __asm__("_ZN6fuzzer3TPCE") __attribute__((weak));

namespace {

// A run on a busy machine may stand still for long.
constexpr rlim_t kMostSecondsOfWork = 10;
constexpr unsigned int kMostSeconds = 120;

/// A piece of the fuzzer's memory, and a copy that a child can write and its parent read.
class Shared {
 public:
  Shared(void* start, std::size_t size) : _start(start), _size(size) {}

  void publish() const { std::memcpy(_copy, _start, _size); }
  void takeOver() const { std::memcpy(_start, _copy, _size); }

 private:
  void* _start;
  std::size_t _size;
  void* _copy = mmap(nullptr, _size + 1, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
};

/// 32 pairs each of numbers of 4 and 8 bytes and of words of up to 64, and 1024 words for searches.
constexpr std::size_t kWord = 65;
constexpr std::size_t kComparisons = 32 * 2 * (4 + 8 + kWord) + 1024 * kWord;

}  // namespace

void runIsolated(const std::function<bool()>& run) {
  static const Shared counters(__start___sancov_cntrs,
                               static_cast<std::size_t>(__stop___sancov_cntrs - __start___sancov_cntrs));
  static const Shared comparisons(fuzzerTracing, fuzzerTracing != nullptr ? kComparisons : 0);
  const pid_t child = fork();
  if (child == 0) {
    std::signal(SIGALRM, SIG_DFL);
    std::signal(SIGABRT, SIG_DFL);
    constexpr rlimit work{kMostSecondsOfWork, kMostSecondsOfWork};
    setrlimit(RLIMIT_CPU, &work);
    alarm(kMostSeconds);
    if (!run()) std::abort();
    counters.publish();
    comparisons.publish();
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
  comparisons.takeOver();
}
