#pragma once

#include <string>

namespace zelkit {

/// Returns the demangled C++ or Rust name (Itanium C++ ABI; Rust's legacy and v0 forms), or `name` if it is
/// not mangled or the result exceeds 16 KiB: a few hundred bytes can expand to gigabytes.
std::string demangled(const char* name);

}  // namespace zelkit
