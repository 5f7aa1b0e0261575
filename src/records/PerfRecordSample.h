#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>

#include "base/Memory.h"
#include "json/BackTraceTexts.h"
#include "records/PerfRecord.h"
#include "records/PerfRecordSampleS.h"

class PerfRecordComm;
class PerfRecordMMap;

/// One sample: where the program counter stood, when, on which core, in which process, and how it got there.
/// Trace-point samples derive from it and have no back-trace.
class PerfRecordSample : public PerfRecord {
 public:
  /// Times in nanoseconds. `nr` is the number of back-trace entries: 1 counts as none, and
  /// gDeepestTrace are kept at most. Resolves the back-trace with the maps and processes known by now, and
  /// joins the list of all samples.
  PerfRecordSample(unsigned long long ip, unsigned long long time, unsigned int cpu, unsigned int pid_,
                   unsigned int tid_, unsigned long long period, unsigned int nr,
                   const PerfRecordSampleS& record);
  /// All 0; takes a number and joins no list.
  PerfRecordSample();
  ~PerfRecordSample() override;

  // Recordings hold millions of samples.
  static void* operator new(std::size_t size) { return _arena.allocate(size); }
  static void operator delete(void* sample, std::size_t size) { _arena.release(sample, size); }

  /// A plain sample, or what the event registry makes of a trace-point sample: a core number above 16 tells
  /// the latter.
  static PerfRecord* createInstance(char* record);

  void processSample(const PerfRecordSampleS& record);
  void processTrace(const PerfRecordSampleS& record);

  /// Final keys for the process and the sample's own address, once the whole recording is known.
  void verifyKey();
  static void verifyKeys();

  /// How many samples there have been, trace-points included.
  static unsigned long long count() { return _runningIndex; }
  /// After verifyKeys: how many samples' own addresses are in no function that has a name.
  static unsigned long long countWithoutFunction();

  bool isKept() const override { return _keepsSamples; }
  virtual void show();
  const char* perfRecordType() const override { return "sample"; }
  unsigned long long getAddress() const override { return _ip; }
  const char* getName() const override { return "sample"; }
  int _out(PerfJSONWriter& writer) override;

  /// The section "samples", in the order of the recording. The samples go as they are written, and leave
  /// their memory to the document.
  static void outAll(PerfJSONWriter& writer);

  static double _firstSampleTime;  ///< seconds of the recording's clock; 0.0 until a sample sets it
  static unsigned long long _lastSampleTime;  ///< of the latest sample in the recording, in nanoseconds
  /// Cleared for a timechart, which has taken all it needs of a sample by the time that there is one.
  static bool _keepsSamples;

 private:
  void resolveTrace(const PerfRecordSampleS& record, unsigned int skip);
  void keepTrace(const BackTraceEntry* entries);

  static Arena _arena;                      ///< of all samples and their back-traces
  static unsigned long long _runningIndex;  ///< the last sample number given
  static std::deque<PerfRecordSample*> _allSamples;

  std::uint8_t _depth = 0;  ///< how many entries _trace has
  std::uint8_t _cpu = 0;
  unsigned int _mapKey = 0;  ///< of the symbol or map at _ip; 0 until verifyKey
  unsigned long long _ip = 0;
  unsigned long long _time = 0;
  PerfRecordComm* _processRecord = nullptr;  ///< null while unknown, never after verifyKey
  BackTraceEntry* _trace = nullptr;
};
