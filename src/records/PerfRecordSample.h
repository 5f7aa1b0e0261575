#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>

#include "base/Memory.h"
#include "json/BackTraceEntries.h"
#include "records/PerfRecord.h"
#include "records/PerfRecordSampleS.h"

class PerfRecordComm;
class PerfRecordMMap;

/// One sample: the program counter, the time, the core, the process and the back-trace. Trace-point samples
/// derive from it and have no back-trace.
class PerfRecordSample : public PerfRecord {
 public:
  /// `time` is in nanoseconds. `nr` is the number of back-trace entries: 1 counts as none, and at most
  /// gDeepestTrace are kept. Resolves the back-trace with the maps and processes known so far, and is added
  /// to the list of all samples.
  PerfRecordSample(unsigned long long ip, unsigned long long time, unsigned int cpu, unsigned int pid_,
                   unsigned int tid_, unsigned long long period, unsigned int nr,
                   const PerfRecordSampleS& record);
  /// Everything is 0; counts as a sample but is not added to the list.
  PerfRecordSample();
  ~PerfRecordSample() override;

  // Recordings hold millions of samples.
  static void* operator new(std::size_t size) { return _arena.allocate(size); }
  static void operator delete(void* sample, std::size_t size) { _arena.release(sample, size); }

  /// Returns a plain sample, or for a trace-point sample, which has a core number above 16, the result of the
  /// event registry.
  static PerfRecord* createInstance(char* record);

  /// Looks up the process and resolves the back-trace.
  void processSample(const PerfRecordSampleS& record);
  /// Resolves the back-trace of a plain sample.
  void processTrace(const PerfRecordSampleS& record);

  /// Sets the process and resolves the sample's own address; called after the whole recording was read.
  void verifyKey();
  static void verifyKeys();

  /// Returns the number of samples so far, trace-points included.
  static unsigned long long count() { return _runningIndex; }
  /// Returns, after verifyKeys, the number of samples whose own address is in no named function.
  static unsigned long long countWithoutFunction();

  bool isKept() const override { return _keepsSamples; }
  virtual void show();
  const char* perfRecordType() const override { return "sample"; }
  unsigned long long getAddress() const override { return _ip; }
  const char* getName() const override { return "sample"; }
  int _out(PerfJSONWriter& writer) override;

  /// Writes the section "samples", in the order of the recording. Releases each sample after its row is
  /// written, so that the document reuses the memory.
  static void outAll(PerfJSONWriter& writer);

  static double _firstSampleTime;  ///< seconds of the recording's clock; 0.0 before the first sample
  static unsigned long long _lastSampleTime;  ///< of the latest sample in the recording, in nanoseconds
  /// False in timechart mode: decoders have extracted their data by the end of construction.
  static bool _keepsSamples;

 private:
  void resolveAndJoin(const PerfRecordSampleS& record);
  void resolveTrace(const PerfRecordSampleS& record, unsigned int skip);
  void keepTrace(const BackTraceEntries::Index* entries);

  static Arena _arena;                      ///< of all samples and their back-traces
  static unsigned long long _runningIndex;  ///< the last sample number assigned
  static std::deque<PerfRecordSample*> _allSamples;

  std::uint8_t _depth = 0;  ///< number of entries of _trace
  std::uint8_t _cpu = 0;
  unsigned int _mapKey = 0;  ///< key of the symbol or map at _ip; 0 until verifyKey
  unsigned long long _ip = 0;
  unsigned long long _time = 0;
  PerfRecordComm* _processRecord = nullptr;   ///< null while unknown, never after verifyKey
  BackTraceEntries::Index* _trace = nullptr;  ///< in PerfRecordMMap::_callers
};
