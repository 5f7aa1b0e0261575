// The program that the comparison with perf records: it is busy for a short while, in the way that its
// argument says.

#include <dlfcn.h>
#include <pthread.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

volatile unsigned int result;

[[gnu::noinline]] unsigned int scramble(unsigned int seed, int rounds) {
  for (int i = 0; i < rounds; ++i) seed = seed * 1103515245 + 12345;
  return seed;
}

[[gnu::noinline]] void sortNumbers(std::vector<unsigned int>& numbers) {
  std::sort(numbers.begin(), numbers.end());
}

[[gnu::noinline]] unsigned int recurse(int depth) {
  return depth == 0 ? scramble(7, 20000) : recurse(depth - 1) + 1;
}

template <typename Work>
void keepBusy(int milliseconds, Work work) {
  for (const auto end = Clock::now() + std::chrono::milliseconds(milliseconds); Clock::now() < end;) work();
}

void sortAndScramble() {
  std::vector<unsigned int> numbers(5000);
  unsigned int number = 1;
  for (unsigned int& entry : numbers) entry = number = number * 1664525 + 1013904223;
  sortNumbers(numbers);
  for (int i = 0; i < 20; ++i) result = scramble(result + numbers[0], 3000);
}

void fork3() {
  for (int i = 0; i < 2; ++i)
    if (fork() == 0) {
      keepBusy(150, sortAndScramble);
      _exit(0);
    }
  keepBusy(150, sortAndScramble);
  while (wait(nullptr) > 0) {
  }
}

void runThreads() {
  std::vector<std::thread> threads;
  for (int i = 0; i < 3; ++i)
    threads.emplace_back([i] {
      pthread_setname_np(pthread_self(), ("worker-" + std::to_string(i)).c_str());
      keepBusy(150, sortAndScramble);
    });
  for (std::thread& thread : threads) thread.join();
}

#ifndef RECORDED_STATIC
/// Loads two libraries by turns, so that their code comes to lie at one address.
void loadAndUnload(const char* const* paths) {
  int turn = 0;
  keepBusy(400, [&] {
    void* library = dlopen(paths[turn++ % 2], RTLD_NOW);
    if (library == nullptr) return;
    const auto work = reinterpret_cast<unsigned int (*)(unsigned int)>(dlsym(library, "work"));
    for (int i = 0; i < 20; ++i) result = work(result);
    dlclose(library);
  });
}
#endif

}  // namespace

int main(int count, char** arguments) {
  const std::string_view way = count > 1 ? arguments[1] : "";
  if (way == "fork") {
    fork3();
  } else if (way == "threads") {
    runThreads();
  } else if (way == "deep") {
    keepBusy(300, [] { result = recurse(40); });
#ifndef RECORDED_STATIC
  } else if (way == "load") {
    loadAndUnload(arguments + 2);
#endif
  } else {
    keepBusy(300, sortAndScramble);
  }
}
