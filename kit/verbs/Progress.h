#pragma once

#include <cstdint>

#include "recording/Recording.h"

namespace zelkit {

/// Returns a function that shows on standard error how far a walk is, if somebody is there to see it: a
/// terminal. The line goes when the walk ends.
Recording::Progress progressLine(const char* what);

}  // namespace zelkit
