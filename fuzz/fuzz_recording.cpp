// Converts a random recording, in profile mode or, if built so, in timechart mode. The magic, which nobody
// looks at, chooses the options and the kernel.

#include <cstdlib>

#include "Isolated.h"
#include "WholeConversion.h"

namespace {

std::vector<std::string> chosenOptions(std::uint8_t choice) {
  static const char* const scales[] = {"-r", "-z", "-q", "-b5"};
  std::vector<std::string> options = {scales[choice & 3]};
  if ((choice & 4) != 0) options.emplace_back("-I");
  if ((choice & 8) != 0) options.emplace_back("-l");
  if ((choice & 0x70) == 0x10) options.emplace_back("-v1");
#ifdef ZELCONV_FUZZ_TIMECHART
  options.emplace_back("-t");
#endif
  return options;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Conversion folder;
  if (size < 2) return 0;
  folder.kernelSymbols("c0008000 T stext\nc0008100 T schedule\nc0008200 t idle\nc000f000 T etext\n");
  folder.write("perf.data", textOf(data, size));
  runIsolated([&] {
    setenv("kern_ver", (data[0] & 32) != 0 ? "3.4" : "3.10", 1);
    setenv("ARM64", (data[0] & 64) != 0 ? "y" : "n", 1);
    return convertWhole(folder, chosenOptions(data[1]));
  });
  return 0;
}
