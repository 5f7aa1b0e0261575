#pragma once

#include <cstdio>
#include <string>

/// The program-wide settings. They are set before or during start-up, from the command line and the
/// environment, and read from everywhere afterwards. Times are seconds as doubles unless a line says
/// otherwise.

// The document
extern bool addJSONWhiteSpace;  ///< -w, -W; the first constructor argument of PerfJSONWriter
extern bool addJSONLabels;      ///< -l, -L; the second constructor argument of PerfJSONWriter
extern bool gReadable;          ///< -R clears it: no line break before a record of the timechart document

// Time: the scales of doTimeConversion
extern int timeConversionType;     ///< 0 raw, 1 epoch, 2 base, 3 zero, 4 y = cx + g
extern double timestampScaler;     ///< c of y = cx + g
extern double timestampOffset;     ///< g of y = cx + g
extern double baseTime;            ///< what scale 2 adds
extern double systemStartTime;     ///< when the machine booted, since the epoch
extern double gtodAtStart;         ///< the document's time zero, on the chosen scale
extern double gtodAtStop;          ///< end of the selected range, on the chosen scale
extern bool gSelectiveProcessing;  ///< whether the charts drop what is outside gtodAtStart to gtodAtStop
extern unsigned long long gFirstTimestampToProcess;  ///< nanoseconds of the recording's clock, inclusive
extern unsigned long long gLastTimestampToProcess;   ///< nanoseconds of the recording's clock, inclusive

// The run
extern unsigned int gVerbosity;  ///< diagnostics on standard output: 0 none, 1 most, 2 every read as well
extern bool gRmFirstInterrupt;   ///< -I: pass over the first entry of every back-trace
extern bool gShowMarkers;        ///< -m: write debug markers to the kernel's log
extern std::FILE* gMarkerFile;   ///< the kernel's log, null until the first marker
extern bool gTimechartMode;      ///< -t: the timechart document instead of the profile document
extern bool gDoneProcessing;     ///< ends the reading of records when set
/// How many entries of a back-trace are kept, 255 at most. No option sets it: viewers expect 15, and programs
/// that link the converter may set more.
extern unsigned int gDeepestTrace;

// The recorded kernel
extern bool is64;                        ///< its trace-points have the layouts of a 64-bit kernel
extern int kern_ver;                     ///< 100 times its major version plus the minor one
extern unsigned long long gKernelStart;  ///< lowest address of its symbols
extern unsigned long long gKernelEnd;    ///< highest address of its symbols

// Files
extern std::string inFileName;   ///< the recording
extern std::string outFileName;  ///< the document
extern std::string symPath;      ///< directories to search for programs and libraries, separated by ":"

/// Returns whether diagnostics are printed on standard output, which they are with -v 1 and above.
inline bool verbose() {
  return gVerbosity > 0;
}
