#include <cstdio>
#include <exception>

#include "verbs/CommandLine.h"
#include "verbs/Verb.h"

int main(int argc, char** argv) {
  try {
    return zelkit::runCommandLine(argc, argv, ZELKIT_VERSION);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "zelkit: %s\n", error.what());
  } catch (...) {
    std::fputs("zelkit: failed for an unknown reason\n", stderr);
  }
  return static_cast<int>(zelkit::Status::kUnreadable);
}
