#include "base/KeyHash.h"

#include <sys/auxv.h>

#include <cstring>

// The kernel gives every process 16 random bytes. Unlike getrandom() they exist on the oldest targets, and
// unlike /dev/urandom they need no file.
KeyHash::KeyHash() {
  const unsigned long address = getauxval(AT_RANDOM);
  const char* random = nullptr;
  std::memcpy(&random, &address, sizeof random);
  if (random == nullptr) return;
  std::memcpy(&_outer, random, sizeof _outer);
  std::memcpy(&_inner, random + sizeof _outer, sizeof _inner);
}
