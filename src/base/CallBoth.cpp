#include "base/CallBoth.h"

#include <future>
#include <system_error>
#include <thread>

void callBoth(const std::function<void()>& first, const std::function<void()>& second) {
  std::future<void> other;
  if (std::thread::hardware_concurrency() > 1) {
    try {
      other = std::async(std::launch::async, second);
    } catch (const std::system_error&) {
      // No thread can be started now, so the work is done without one.
    }
  }
  first();
  if (other.valid()) {
    other.get();
  } else {
    second();
  }
}
