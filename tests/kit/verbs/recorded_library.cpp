// A library that the recorded program loads, with a local function whose name differs from build to build,
// and its code too: perf takes files of one build-id for one file, and the linker makes it from the code.

static __attribute__((noinline)) unsigned int LOCAL_NAME(unsigned int seed) {
  for (int i = 0; i < 200000; ++i) seed = seed * 33 + LOCAL_STEP;
  return seed;
}

extern "C" unsigned int work(unsigned int seed) {
  return LOCAL_NAME(seed) + 1;
}
