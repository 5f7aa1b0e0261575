#pragma once

#include <string>

namespace zelkit {

/// Returns the name as its C++ or Rust source has it (Itanium C++ ABI; Rust's legacy and v0 forms), or `name`
/// itself if it is of no such form. A name that would grow beyond 16 KiB stays as it is: a few hundred bytes
/// can be made to mean gigabytes.
std::string demangled(const char* name);

}  // namespace zelkit
