#include "run/MachineFiles.h"

MachineFiles gMachineFiles;
