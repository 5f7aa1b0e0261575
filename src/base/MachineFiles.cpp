#include "base/MachineFiles.h"

MachineFiles gMachineFiles;
