#pragma once

#include <functional>

/// Calls both functions and returns when both have returned: in parallel if this process may use two
/// processors, else one after the other. Passes an exception of either on.
void callBoth(const std::function<void()>& first, const std::function<void()>& second);
