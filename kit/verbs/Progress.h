#pragma once

#include <cstdint>

#include "recording/Recording.h"

namespace zelkit {

/// Returns a function that shows the progress of a walk on standard error if that is a terminal. The line is
/// erased with the function.
Recording::Progress progressLine(const char* what);

}  // namespace zelkit
