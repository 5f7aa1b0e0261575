#pragma once

#include <functional>

/// Runs one conversion in its own process, as the program does: its static tables do not affect the next one.
/// The fuzzer gets the coverage counted there. A crash, a sanitizer's report, more than ten seconds of work,
/// or false returned by the run aborts the fuzzer, which then keeps the input.
void runIsolated(const std::function<bool()>& run);
