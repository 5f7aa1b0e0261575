// A program to be recorded on a device: it computes for about a second in functions with known names, and
// sleeps from time to time so that there are scheduler events.

#include <chrono>
#include <cstdio>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

}  // namespace

extern "C" {
[[gnu::noinline]] unsigned int load_mix(unsigned int value) {
  for (int i = 0; i < 2000; ++i) value = value * 1664525 + 1013904223;
  return value;
}

[[gnu::noinline]] unsigned int load_divide(unsigned int value) {
  for (unsigned int i = 1; i < 500; ++i) value += 0x7FFFFFFF / (i + (value & 15));
  return value;
}
}

int main() {
  unsigned int value = 1;
  const auto end = Clock::now() + std::chrono::milliseconds(1200);
  for (int round = 0; Clock::now() < end; ++round) {
    value = load_mix(load_divide(value));
    if (round % 2000 == 0) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  std::printf("load %u\n", value);
  return 0;
}
