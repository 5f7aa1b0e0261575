#pragma once

#include <string>
#include <string_view>

namespace zelkit {

/// Returns the demangled C++ or Rust name (Itanium C++ ABI; Rust's legacy and v0 forms), or `name` if it is
/// not mangled or the result exceeds 16 KiB: a few hundred bytes can expand to gigabytes.
std::string demangled(const char* name);

/// The end of the names of a symbol list's stubs that call another library.
constexpr std::string_view kStubEnding = "@plt";

/// Returns the name of a symbol list in demangled form, keeping the ending of a stub.
std::string readableName(std::string_view listed);

}  // namespace zelkit
