#include "run/KernelLog.h"

#include <cstdio>

#include "base/MachineFiles.h"
#include "base/OutputFile.h"
#include "run/Settings.h"

namespace {

std::FILE* openKernelLog() {
  const int descriptor = openOutputFile(gMachineFiles.kernelLog.c_str());
  return descriptor >= 0 ? fdopen(descriptor, "w") : nullptr;
}

}  // namespace

void writeMarker(const char* text) {
  if (!gShowMarkers) return;
  if (gMarkerFile == nullptr) gMarkerFile = openKernelLog();
  if (gMarkerFile == nullptr) return;
  std::fprintf(gMarkerFile, "zcv-%s\n", text);
  std::fflush(gMarkerFile);
}

void closeKernelLog() {
  if (gMarkerFile != nullptr) std::fclose(gMarkerFile);
}
