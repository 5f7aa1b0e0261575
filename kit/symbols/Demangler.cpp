#include "symbols/Demangler.h"

#include <libiberty/demangle.h>

#include <csetjmp>
#include <cstddef>

namespace zelkit {

namespace {

constexpr std::size_t kLongestName = std::size_t{16} * 1024;

/// The output of the demangler so far.
struct Output {
  char text[kLongestName];
  std::size_t size;
  std::jmp_buf tooLong;
};

void take(const char* piece, std::size_t size, void* opaque) {
  auto* output = static_cast<Output*>(opaque);
  // The demangler cannot be stopped in another way. It is C code and owns nothing but its stack while it
  // prints.
  if (size > kLongestName - output->size) std::longjmp(output->tooLong, 1);
  for (std::size_t i = 0; i < size; ++i) output->text[output->size + i] = piece[i];
  output->size += size;
}

/// Returns whether the demangler of C++ or of Rust could write the name. longjmp leaves this function, so it
/// must not have objects with destructors.
bool demangleInto(Output& output, const char* name) {
  constexpr int kOptions = DMGL_PARAMS | DMGL_ANSI;
  output.size = 0;
  if (setjmp(output.tooLong) != 0) return false;
  if (rust_demangle_callback(name, kOptions, take, &output) != 0) return true;
  output.size = 0;
  return cplus_demangle_v3_callback(name, kOptions, take, &output) != 0;
}

}  // namespace

std::string demangled(const char* name) {
  if (name[0] != '_' || (name[1] != 'Z' && name[1] != 'R' && name[1] != '_')) return name;
  Output output;
  if (demangleInto(output, name) && output.size > 0) return {output.text, output.size};
  return name;
}

std::string readableName(std::string_view listed) {
  if (!listed.ends_with(kStubEnding)) return demangled(std::string(listed).c_str());
  listed.remove_suffix(kStubEnding.size());
  return demangled(std::string(listed).c_str()).append(kStubEnding);
}

}  // namespace zelkit
