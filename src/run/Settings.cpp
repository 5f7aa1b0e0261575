#include "run/Settings.h"

bool addJSONWhiteSpace = true;
bool addJSONLabels = false;
bool gReadable = true;

int timeConversionType = 2;
double timestampScaler = 1.0;
double timestampOffset = 0.0;
double baseTime = 1000000.0;
double systemStartTime = 0.0;
double gtodAtStart = 0.0;
double gtodAtStop = 0.0;
bool gSelectiveProcessing = false;
unsigned long long gFirstTimestampToProcess = 0;
unsigned long long gLastTimestampToProcess = 0xFFFFFFFFFFFFFFFF;

unsigned int gVerbosity = 0;
bool gRmFirstInterrupt = false;
bool gShowMarkers = false;
std::FILE* gMarkerFile = nullptr;
bool gTimechartMode = false;
bool gDoneProcessing = false;
unsigned int gDeepestTrace = 15;

bool is64 = false;
int kern_ver = 304;
unsigned long long gKernelStart = 0xBF000000;
unsigned long long gKernelEnd = 0xCF000000;

std::string inFileName = "perf.data";
std::string outFileName = "perf.json";
std::string symPath = "/";
