#include "records/PerfRecordSample.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <vector>

#include "events/PerfRecordSampleEvent.h"
#include "json/DocumentSection.h"
#include "records/PerfFactory.h"
#include "records/PerfRecordComm.h"
#include "records/PerfRecordMMap.h"
#include "records/PerfRecordType.h"
#include "run/Settings.h"
#include "run/TimeBase.h"
#include "symbols/SymbolTable.h"

double PerfRecordSample::_firstSampleTime = 0.0;
unsigned long long PerfRecordSample::_lastSampleTime = 0;
bool PerfRecordSample::_keepsSamples = true;
Arena PerfRecordSample::_arena;
unsigned long long PerfRecordSample::_runningIndex = 0;
std::deque<PerfRecordSample*> PerfRecordSample::_allSamples;

namespace {

const PerfAddFactory sampleFactory(PERF_RECORD_SAMPLE, "sample", PerfRecordSample::createInstance);

constexpr unsigned int kHighestCore = 16;
constexpr unsigned int kDeepestPossible = 255;
constexpr unsigned long long kLastInterruptAddress = 0xFEFFFFFF;
constexpr unsigned long long kLastStrayMarker = 0x100;

constexpr SectionColumn kColumns[] = {
    {"key", "key or reference for this sample"},
    {"ip", "Location of sample, program counter"},
    {"mapkey", "reference to map entry"},
    {"time", "time stamp of the sample"},
    {"cpu", "which core the sample was taken on"},
    {"pidkey", "reference to the process element"},
    {"tid", "tid for this sample"},
    {"bt.ip", "backtrace program counter"},
    {"bt.mapkey", "backtrace map key"},
};

std::uint8_t keptDepth(unsigned int nr) {
  return static_cast<std::uint8_t>(nr == 1 ? 0 : std::min({nr, gDeepestTrace, kDeepestPossible}));
}

}  // namespace

PerfRecordSample::PerfRecordSample(unsigned long long ip, unsigned long long time, unsigned int cpu,
                                   unsigned int pid_, unsigned int tid_, unsigned long long /*period*/,
                                   unsigned int nr, const PerfRecordSampleS& record)
    : PerfRecord(pid_, tid_),
      _depth(keptDepth(nr)),
      _cpu(static_cast<std::uint8_t>(cpu)),
      _ip(ip),
      _time(time) {
  if (_firstSampleTime == 0.0) _firstSampleTime = time64ToDouble(time);
  _lastSampleTime = time;
  key = static_cast<unsigned int>(++_runningIndex);
  // A timechart's trace-points have nothing to look up, and there may be millions.
  if (_keepsSamples || _depth != 0 || verbose()) resolveAndJoin(record);
}

/// Resolves the sample and joins the list of all samples.
void PerfRecordSample::resolveAndJoin(const PerfRecordSampleS& record) {
  processSample(record);
  if (_keepsSamples) _allSamples.push_back(this);
  if (verbose()) PerfRecordSample::show();
}

PerfRecordSample::PerfRecordSample() {
  key = static_cast<unsigned int>(++_runningIndex);
}

PerfRecordSample::~PerfRecordSample() {
  _arena.release(_trace, _depth * sizeof *_trace);
}

PerfRecord* PerfRecordSample::createInstance(char* record) {
  const PerfRecordSampleS sample(record);
  if (sample.cpu() > kHighestCore) return PerfRecordSampleEvent::factoryCreate(record);
  return new PerfRecordSample(sample.ip(), sample.time(), sample.cpu(), sample.pid(), sample.tid(),
                              sample.period(), sample.nr(), sample);
}

void PerfRecordSample::processSample(const PerfRecordSampleS& record) {
  // A timechart does not need the process, except to print it in a verbose run.
  if (_keepsSamples || verbose()) _processRecord = PerfRecordComm::findProcessRecord(pid, tid);
  if (_processRecord == nullptr && verbose())
    std::printf("Missing process p:%d t:%d\n", static_cast<int>(pid), static_cast<int>(tid));
  processTrace(record);
}

void PerfRecordSample::processTrace(const PerfRecordSampleS& record) {
  unsigned int skip = 0;
  if (gRmFirstInterrupt) {
    if (record.ips(0) <= kLastInterruptAddress && verbose()) std::puts("Not an interrupt");
    skip = 1;
  }
  if (skip < _depth) resolveTrace(record, skip);
}

/// Resolves and keeps the entries of the back-trace after the skipped ones.
void PerfRecordSample::resolveTrace(const PerfRecordSampleS& record, unsigned int skip) {
  // A skipped entry does not shorten the trace: its last entry is then the one after those that `nr` covers.
  // Documents have always contained it.
  std::array<BackTraceEntries::Index, kDeepestPossible> entries;
  ResolutionBasis basis = PerfRecordMMap::basisNow(classOf(_ip));
  unsigned long long address = 0;
  for (unsigned int i = 0; i < _depth; ++i) {
    address = record.ips(skip + i);
    entries[i] = PerfRecordMMap::resolveCaller({address, pid, tid}, basis);
  }
  if (address <= kLastStrayMarker) --_depth;
  keepTrace(entries.data());
}

void PerfRecordSample::keepTrace(const BackTraceEntries::Index* entries) {
  _trace = static_cast<BackTraceEntries::Index*>(
      _arena.allocate(_depth * sizeof *_trace, alignof(BackTraceEntries::Index)));
  std::uninitialized_copy_n(entries, _depth, _trace);
}

void PerfRecordSample::verifyKey() {
  // The record that names a process may follow its samples.
  if (_processRecord == nullptr) _processRecord = PerfRecordComm::findProcessRecord(pid, tid);
  if (_processRecord == nullptr) _processRecord = PerfRecordComm::findProcessRecord(pid, 0);
  if (_processRecord == nullptr) _processRecord = &PerfRecordComm::_lostAndFound;
  _mapKey = PerfRecordMMap::resolveSample({_ip, pid, tid});
}

void PerfRecordSample::verifyKeys() {
  for (PerfRecordSample* sample : _allSamples) sample->verifyKey();
}

unsigned long long PerfRecordSample::countWithoutFunction() {
  std::vector<bool> isFunction(std::size_t{PerfRecordMMap::_indexTotal} + 1);
  for (const SymbolTable* table : SymbolTable::_allSymbolTables)
    if (table != SymbolTable::_syntheticSymTable)
      for (const SymbolTableElement* symbol : table->inOrder())
        isFunction[symbol->key()] = symbol->key() != 0;
  return static_cast<unsigned long long>(
      std::count_if(_allSamples.begin(), _allSamples.end(),
                    [&](const PerfRecordSample* sample) { return !isFunction[sample->_mapKey]; }));
}

void PerfRecordSample::show() {
  const char* kind = PerfRecordMMap::findMap(this) != nullptr ? "SAMP" : "sxxx";
  std::printf("%s k:%d p:%d t:%d a:%llx\n", kind, static_cast<int>(key), static_cast<int>(pid),
              static_cast<int>(tid), _ip);
}

int PerfRecordSample::_out(PerfJSONWriter& writer) {
  writer.writeRow(Named{"key", key}, Named{"ip", _ip}, Named{"mapkey", _mapKey},
                  Named{"time", relativeToStart(doTimeConversion(_time))},
                  Named{"cpu", static_cast<unsigned int>(_cpu)}, Named{"pidkey", _processRecord->key},
                  Named{"tid", tid},
                  Named{"bt", BackTrace{PerfRecordMMap::_callers, {_trace, _depth}, "ip", "mapkey"}});
  return 0;
}

void PerfRecordSample::outAll(PerfJSONWriter& writer) {
  writeSection(writer, "samples", kColumns, [&] {
    for (; !_allSamples.empty(); _allSamples.pop_front()) {
      _arena.releaseBlocksBefore(_allSamples.front());
      _allSamples.front()->out(writer);
    }
  });
}
