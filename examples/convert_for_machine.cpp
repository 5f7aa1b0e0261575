// zelconv as it would run on another machine: convert_for_machine FOLDER [zelconv options]
//
// The files of the machine, kallsyms, softirqs, trace and uptime, come from the folder; one that is not there
// counts as missing. With the files of a device its recordings can be converted on a workstation.

#include <cstdio>
#include <string>

#include "base/MachineFiles.h"
#include "run/profile.h"

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: zelconv-for-machine FOLDER [zelconv options]\n");
    return 2;
  }
  const std::string folder = argv[1];
  gMachineFiles.kernelSymbols = folder + "/kallsyms";
  gMachineFiles.softInterrupts = folder + "/softirqs";
  gMachineFiles.traceText = folder + "/trace";
  gMachineFiles.uptime = folder + "/uptime";
  argv[1] = argv[0];
  return profile(argc - 1, argv + 1);
}
