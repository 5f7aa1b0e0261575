// Converts a random recording, in profile mode or, if built so, in timechart mode. The magic, which is not
// read otherwise, chooses the options, the kernel and how many bytes at the end are the output of nm for the
// files that maps name.

#include <algorithm>
#include <cstdlib>
#include <iterator>

#include "Isolated.h"
#include "WholeConversion.h"

namespace {

std::vector<std::string> chosenOptions(const std::uint8_t* choices, const std::string& searchPath) {
  // Infinity and not-a-number would make documents that no parser accepts.
  static const std::vector<std::string> scales[] = {
      {"-r"}, {"-z"}, {"-q"}, {"-b5"}, {"-e"}, {"-b", "-7.5"}, {"-q", "-c1.5", "-g-3.25"}, {"-q", "-c-1e30"}};
  static const char* const switches[] = {"-I", "-l", "-L", "-w", "-W", "-R", "-d", "-m"};
  static const std::vector<std::string> ranges[] = {{},         {},       {"-s1"}, {"-f2"}, {"-s1", "-f2"},
                                                    {"-s1e30"}, {"-f-5"}, {}};
  std::vector<std::string> options = scales[choices[1] & 7];
  for (unsigned int i = 0; i < std::size(switches); ++i)
    if ((choices[2] >> i & 1) != 0) options.emplace_back(switches[i]);
  const std::vector<std::string>& range = ranges[choices[3] & 7];
  options.insert(options.end(), range.begin(), range.end());
  if ((choices[3] & 0xF0) == 0x10) options.emplace_back("-v1");
  if ((choices[3] & 0xF0) == 0x20) options.emplace_back("-v2");
  options.insert(options.end(), {"-p", searchPath});
#ifdef ZELCONV_FUZZ_TIMECHART
  options.emplace_back("-t");
#endif
  return options;
}

/// The list is what nm prints for each of them; shorter names are easier to hit upon.
void makeLibraries(const Conversion& folder, const std::string& list) {
  for (const char* file : {"/a", "/app/tool", "/lib/one.so"}) folder.library(file, list);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Conversion folder;
  if (size < 8) return 0;
  const std::size_t listSize = std::min<std::size_t>(std::size_t{8} * data[4], size);
  const std::string list = textOf(data + size - listSize, listSize);
  folder.kernelSymbols("c0008000 T stext\nc0008100 T schedule\nc0008200 t idle\nc000f000 T etext\n");
  folder.write("perf.data", textOf(data, size));
  makeLibraries(folder,
                (data[0] & 1) != 0 ? list : "00000100 T first\n00000200 T second\n00008000 T third\n");
  runIsolated([&] {
    setenv("kern_ver", (data[0] & 32) != 0 ? "3.4" : "3.10", 1);
    setenv("ARM64", (data[0] & 64) != 0 ? "y" : "n", 1);
    // Without labels, which -W switches off, the profile document has no one root to be read back from.
    const bool hasRoot = (data[2] & 16) == 0;
    return convertWhole(folder, chosenOptions(data, folder.path("root"))) || !hasRoot;
  });
  return 0;
}
