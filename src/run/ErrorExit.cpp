#include "run/ErrorExit.h"

#include <cstdio>
#include <cstdlib>

void errorExit(const char* message, int status) {
  std::printf("ERROR: %s\n", message);
  std::exit(status);
}
