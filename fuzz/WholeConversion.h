#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "support/Conversion.h"

/// Converts the file "perf.data" of the folder as the program would, to whatever end the rules allow, and
/// returns whether the document, if there is one, can be read back.
bool convertWhole(const Conversion& folder, const std::vector<std::string>& options);

inline std::string textOf(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}
