#include "base/KeyHash.h"

#include <sys/auxv.h>

#include <cstring>

// The kernel hands every process 16 random bytes. Unlike the calls for random numbers these are there on the
// oldest of targets, and take no file.
KeyHash::KeyHash() {
  const auto* const random = reinterpret_cast<const char*>(getauxval(AT_RANDOM));
  if (random == nullptr) return;
  std::memcpy(&_outer, random, sizeof _outer);
  std::memcpy(&_inner, random + sizeof _outer, sizeof _inner);
}
