#include "run/Options.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "base/PerfFoundation.h"
#include "base/TargetNumbers.h"
#include "run/ErrorExit.h"
#include "run/Settings.h"
#include "symbols/FileNames.h"

namespace {

using OptionHandler = void (*)(const char* argument);

struct ProgramOption {
  OptionHandler handler;
  int option;
  int takesArgument;
  const char* help;
};

void parseAddWhiteSpace(const char*) {
  addJSONWhiteSpace = true;
}
void parseAddJSONLabels(const char*) {
  addJSONLabels = true;
}
void parseRemoveWhiteSpace(const char*) {
  addJSONWhiteSpace = false;
}
void parseRemoveJSONLabels(const char*) {
  addJSONLabels = false;
}
void parseRmInterrupts(const char*) {
  gRmFirstInterrupt = true;
}
void parseInFile(const char* argument) {
  inFileName = argument;
}
void parseOutFile(const char* argument) {
  outFileName = argument;
}
void parseAddToPath(const char* argument) {
  symPath += std::string(":") + argument;
}
void parseZeroTime(const char*) {
  timeConversionType = 3;
}
void parseEpochTime(const char*) {
  timeConversionType = 1;
}
void parseLoomstatTime(const char*) {
  timeConversionType = 4;
}
void parseRawTime(const char*) {
  timeConversionType = 0;
}
void parseNotReadable(const char*) {
  gReadable = false;
}
void parseBypassDestruct(const char*) {
  PerfFoundation::_bypassDestructor = true;
}
void parseDontBypassDestruct(const char*) {
  PerfFoundation::_bypassDestructor = false;
}
void parseVerbose(const char* argument) {
  gVerbosity = static_cast<unsigned int>(targetStrtol(argument));
}
void parseShowMarkers(const char*) {
  gShowMarkers = true;
}
void parseTimechartMode(const char*) {
  gTimechartMode = true;
}
void parseOGServer(const char* argument) {
  FileNames::_ogServer = argument;
}
void parseOGProtocol(const char* argument) {
  FileNames::_ogProtocol = argument;
}

/// A text that is not a number does not change the value.
void scanDouble(const char* argument, double& value) {
  std::sscanf(argument, "%lf", &value);
}

void parseTimestampScaler(const char* argument) {
  scanDouble(argument, timestampScaler);
}
void parseTimestampOffset(const char* argument) {
  scanDouble(argument, timestampOffset);
}

void parseBaseTime(const char* argument) {
  scanDouble(argument, baseTime);
  gtodAtStart = baseTime;
}

/// Parses one end of the selected range. Returns it in whole seconds of the recording's clock: y = cx + g
/// solved for x, with -c and -g as set so far.
unsigned long long parseRangeEnd(const char* argument, double& end) {
  gSelectiveProcessing = true;
  end = 0.0;
  scanDouble(argument, end);
  return truncateToUnsigned64((end - timestampOffset) / timestampScaler);
}

// The range in nanoseconds is one second wider at both ends: it is a coarse filter, and the charts apply the
// exact one.
void parseStartTime(const char* argument) {
  gFirstTimestampToProcess = (parseRangeEnd(argument, gtodAtStart) - 1) * 1000000000;
}

void parseFinishTime(const char* argument) {
  gLastTimestampToProcess = (parseRangeEnd(argument, gtodAtStop) + 1) * 1000000000;
}

void parseOGFilesOnly(const char* argument) {
  if (argument != nullptr) FileNames::_ogFunctionOnlyLookup = targetStrtol(argument) == 1;
}

void parseShowHelp(const char*);

/// In the order of the help. The first row of a letter is the one used, so the second -P is only shown.
const ProgramOption programOptions[] = {
    {parseAddWhiteSpace, 'w', 0, "add white space to the JSON output (D)"},
    {parseAddJSONLabels, 'l', 0, "add labels to the JSON output"},
    {parseRemoveWhiteSpace, 'W', 0, "remove white space from JSON output"},
    {parseRemoveJSONLabels, 'L', 0, "remove labels from the JSON outout (D)"},
    {parseRmInterrupts, 'I', 0, "remove first interrupt in backtrace "},
    {parseInFile, 'i', 1, "parse input file name (perf.data)"},
    {parseOutFile, 'o', 1, "output file name (perf.json)"},
    {parseAddToPath, 'p', 1, "add to the path to search for syms (/proc/1/root)"},
    {parseZeroTime, 'z', 0, "use a zero time base offset"},
    {parseEpochTime, 'e', 0, "use Unix Epoch time as base offset (D)"},
    {parseLoomstatTime, 'q', 0, "use Unix Epoch time as base offset (D)"},
    {parseRawTime, 'r', 0, "use the raw time, no offset"},
    {parseNotReadable, 'R', 0, "remove cr/lf to make less readable"},
    {parseBaseTime, 'b', 1, "provide a base time in float format"},
    {parseStartTime, 's', 1, "first timestamp to process (gettimeofday format)"},
    {parseFinishTime, 'f', 1, "last timestamp to process (gettimeofday format)"},
    {parseBypassDestruct, 'd', 0, "bypass destructors"},
    {parseDontBypassDestruct, 'D', 0, "don't bypass destructors (D)"},
    {parseVerbose, 'v', 1, "verbosity level"},
    {parseShowMarkers, 'm', 0, "put ZelView debug markers in code"},
    {parseShowHelp, 'h', 0, "print this help menu"},
    {parseTimechartMode, 't', 0, "process a timechart perf dump"},
    {parseTimestampScaler, 'c', 1, "y = cx + g, loomstat timestamp scaler"},
    {parseTimestampOffset, 'g', 1, "y = cx + g, loomstat timestamp offset"},
    {parseOGServer, 'S', 1, "Server name for opengrok default:" ZELCONV_OPENGROK_SERVER},
    {parseOGProtocol, 'P', 1, "Server protocol for opengrok default:http"},
    {parseOGFilesOnly, 'P', 1, "File only lookup for opengrok default:false"},
    {nullptr, 0, 0, nullptr},
};

void parseShowHelp(const char*) {
  std::printf("Usage:  zelconv <options>\n");
  for (const ProgramOption* row = programOptions; row->handler != nullptr; ++row)
    std::printf("   %c - %s\n", row->option, row->help);
  std::exit(0);
}

std::string shortOptions() {
  std::string letters;
  for (const ProgramOption* row = programOptions; row->handler != nullptr; ++row) {
    letters += static_cast<char>(row->option);
    if (row->takesArgument != 0) letters += ':';
  }
  return letters;
}

}  // namespace

void parseOptions(int argc, char** argv) {
  const std::string letters = shortOptions();
  for (int letter = getopt(argc, argv, letters.c_str()); letter != -1;
       letter = getopt(argc, argv, letters.c_str())) {
    const ProgramOption* row = programOptions;
    while (row->handler != nullptr && row->option != letter) ++row;
    if (row->handler == nullptr) errorExit("Bad option passed use -h for help", -1);
    row->handler(optarg);
  }
}
