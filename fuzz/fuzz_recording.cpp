// Converts a random recording, in profile mode or, if built so, in timechart mode. The input's difference
// from the magic of recordings chooses the options, the kernel, whether standard error is a terminal, and how
// many bytes at the end are the output of nm for the files that maps name.

#include <fcntl.h>
#include <pty.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iterator>

#include "Isolated.h"
#include "WholeConversion.h"

namespace {

constexpr const char* kMagic = "PERFFILE";
using Choices = std::array<unsigned int, 8>;

Choices choicesOf(const std::uint8_t* magic) {
  Choices choices{};
  for (std::size_t i = 0; i < choices.size(); ++i)
    choices[i] = magic[i] ^ static_cast<unsigned int>(kMagic[i]);
  return choices;
}

/// The program examines a recording's header only for messages at a terminal. Nobody reads them from this
/// one, so it must not block.
void useTerminal() {
  int master = -1;
  int terminal = -1;
  if (openpty(&master, &terminal, nullptr, nullptr, nullptr) != 0) return;
  fcntl(terminal, F_SETFL, O_NONBLOCK);
  dup2(terminal, STDERR_FILENO);
}

std::vector<std::string> chosenOptions(const Choices& choices, const std::string& searchPath) {
  // Infinity and not-a-number would make documents that no parser accepts.
  static const std::vector<std::string> scales[] = {
      {"-b5"}, {"-z"}, {"-q"}, {"-r"}, {"-e"}, {"-b", "-7.5"}, {"-q", "-c1.5", "-g-3.25"}, {"-q", "-c-1e30"}};
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
  const Choices choices = choicesOf(data);
  const std::size_t listSize = std::min<std::size_t>(std::size_t{8} * choices[4], size);
  const std::string list = textOf(data + size - listSize, listSize);
  folder.kernelSymbols("c0008000 T stext\nc0008100 T schedule\nc0008200 t idle\nc000f000 T etext\n");
  folder.write("perf.data", textOf(data, size).replace(0, choices.size(), kMagic));
  makeLibraries(folder,
                (choices[0] & 1) != 0 ? list : "00000100 T first\n00000200 T second\n00008000 T third\n");
  runIsolated([&] {
    setenv("kern_ver", (choices[0] & 32) != 0 ? "3.10" : "3.4", 1);
    setenv("ARM64", (choices[0] & 64) != 0 ? "y" : "n", 1);
    if ((choices[0] & 16) != 0) useTerminal();
    // Without labels, which -W switches off, the profile document has no one root to be read back from. The
    // points of a timechart are cut at 31 bytes, which times of the last scale exceed.
    const bool isReadable = (choices[2] & 16) == 0 && (choices[1] & 7) != 7;
    return convertWhole(folder, chosenOptions(choices, folder.path("root"))) || !isReadable;
  });
  return 0;
}
