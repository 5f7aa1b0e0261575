#include "base/KeyHash.h"

#include <sys/auxv.h>

#include <cstring>

// The kernel hands every process 16 random bytes. Unlike the calls for random numbers these are there on the
// oldest of targets, and take no file.
KeyHash::KeyHash() {
  const unsigned long address = getauxval(AT_RANDOM);
  const char* random = nullptr;
  std::memcpy(&random, &address, sizeof random);
  if (random == nullptr) return;
  std::memcpy(&_outer, random, sizeof _outer);
  std::memcpy(&_inner, random + sizeof _outer, sizeof _inner);
}
