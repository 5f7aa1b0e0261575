#pragma once

#include <functional>

/// Runs one conversion in a process of its own, as the program does: what it leaves in static tables cannot
/// reach the next one. The fuzzer gets the coverage counted there. A crash, a sanitizer's report, more than
/// ten seconds, or an answer of false from the run aborts the fuzzer, which then keeps the input.
void runIsolated(const std::function<bool()>& run);
