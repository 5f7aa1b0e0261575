// zelconv as it would run on another machine: convert_for_machine FOLDER [zelconv options]
//
// The files of the machine, kallsyms, softirqs, trace and uptime, come from the folder as far as they are
// there. With those of a device one can convert its recordings on a workstation.

#include <cstdio>
#include <filesystem>
#include <string>

#include "run/MachineFiles.h"
#include "run/profile.h"

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: convert_for_machine FOLDER [zelconv options]\n");
    return 2;
  }
  const std::string folder = argv[1];
  const auto take = [&](std::string& file, const char* name) {
    if (std::filesystem::exists(folder + "/" + name)) file = folder + "/" + name;
  };
  take(gMachineFiles.kernelSymbols, "kallsyms");
  take(gMachineFiles.softInterrupts, "softirqs");
  take(gMachineFiles.traceText, "trace");
  take(gMachineFiles.uptime, "uptime");
  argv[1] = argv[0];
  return profile(argc - 1, argv + 1);
}
