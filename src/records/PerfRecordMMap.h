#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "records/AddressCache.h"
#include "records/MapIndex.h"
#include "records/PerfRecord.h"

class PerfRecordComm;
class PerfRecordSample;
class SymbolTable;
class SymbolTableElement;

/// One memory mapping of one process: an address range and the file mapped there. The class resolves
/// addresses to symbols.
///
/// Body of PERF_RECORD_MMAP in linux/perf_event.h: pid (offset 8, 4 bytes), tid (12, 4), start (16, 8),
/// length (24, 8), page offset (32, 8), file name (40, NUL-terminated).
///
/// Kernel and stack have one fixed map each, see AddressClass; the maps of a recording are searched for all
/// other addresses. A range includes the address after its last byte.
class PerfRecordMMap : public PerfRecord {
 public:
  /// Everything but the key is 0 or null.
  PerfRecordMMap();
  /// Is added to the tables and requests the file's symbols. The first such map also creates the three fixed
  /// maps.
  PerfRecordMMap(unsigned int pid_, unsigned int tid_, unsigned long long start, unsigned long long length,
                 unsigned long long pageOffset, std::string_view name);

  /// Creation function for PerfFactory.
  static PerfRecord* createInstance(char* record);

  /// Returns the map that covers the address, or null. The tid is ignored, see MapIndex.
  static PerfRecordMMap* findMap(unsigned long long address, unsigned int pid, unsigned int tid);
  /// The same for the sample's own address; marks the symbol there as used.
  static PerfRecordMMap* findMap(PerfRecordSample* sample);
  /// Returns any map of the sample's process, or null; for an address of the kernel or the stack the fixed
  /// map.
  static PerfRecordMMap* findPidMap(PerfRecordSample* sample);

  /// Creates a synthetic entry for the 64 KiB page of an address that no map covers: a symbol under a map of
  /// the process if it has any, else a map. Addresses of the first page belong to the lost-and-found map.
  /// Returns the map, or null before the fixed maps exist.
  static PerfRecordMMap* createSyntheticMap(PerfRecordSample* sample, unsigned int pid, unsigned int tid,
                                            unsigned long long address);

  /// Returns the current basis of resolutions, for a sample whose own address is of the given class.
  static ResolutionBasis basisNow(AddressClass sampleClass);
  /// Resolves an address of a back-trace, and counts one use of the map and of the symbol there. An address
  /// without a map gets a synthetic entry. `basis` must be current and is kept current, so one serves a whole
  /// back-trace. Returns the index in _callers of the address and the key of the symbol, else of the map; the
  /// key is 0 if there is no map.
  static BackTraceEntries::Index resolveCaller(const CodeAddress& caller, ResolutionBasis& basis);
  /// The same for a sample's own address, which counts two uses of the symbol if a map covers it.
  static unsigned int resolveSample(const CodeAddress& sample);

  using PerfRecord::getKey;
  /// Returns the key of the symbol at the address and marks it as used; without a symbol returns the key of
  /// the map.
  virtual unsigned int getKey(unsigned long long address);

  /// Marks the symbol at the sample's address as used.
  void addSample(PerfRecordSample* sample);

  /// Returns -1 for another pid, 2 for another tid unless that is 0, 1 for an address outside the range, 0
  /// for a match.
  int checkRange(unsigned long long address, unsigned int pid_, unsigned int tid_) const {
    if (pid != pid_) return -1;
    if (tid_ != 0 && tid != tid_) return 2;
    return address < _start || address > _start + _length ? 1 : 0;
  }

  /// Looks up the process unless it is known.
  void addProcessRef();
  static void findMissingProcessRefs();

  /// Requests the symbols of the file; a null name does nothing.
  void findMoreSymbols(const char* name);

  void countUse() { ++_useCount; }

  virtual void setName(std::string_view name);
  virtual void show() const;
  const char* perfRecordType() const override { return "mmap"; }
  unsigned int getLen() const override { return static_cast<unsigned int>(_length); }
  unsigned long long getAddress() const override { return _start; }
  const char* getName() const override { return _fileName; }
  int _out(PerfJSONWriter& writer) override;

  /// Writes the section "libraries": the fixed maps, then the maps that samples used.
  static void outAll(PerfJSONWriter& writer);

  static unsigned int _indexTotal;   ///< the last key assigned; maps and symbols share the counter
  static BackTraceEntries _callers;  ///< the entries of all back-traces
  static PerfRecordMMap* _lostAndFound;
  static PerfRecordMMap* _kernelMap;
  static PerfRecordMMap* _stackMap;

 private:
  static void buildStandingMaps();
  static PerfRecordMMap* makeStandingMap(std::string_view name, unsigned long long start,
                                         unsigned long long length, unsigned int pidKey,
                                         SymbolTable* symbols);
  static PerfRecordMMap* findPidMap(unsigned int pid, AddressClass addressClass);
  static Resolution& resolve(const CodeAddress& code, ResolutionBasis& basis);
  static Resolution lookUp(const CodeAddress& code, AddressClass sampleClass);
  static Resolution makeHome(const CodeAddress& code, AddressClass sampleClass);
  static void countPageUse(const Resolution& resolution);
  static unsigned int keyOf(const Resolution& resolution);
  void link(SymbolTableElement& symbol) const;
  SymbolTableElement* linkSymbolAt(unsigned long long address) const;
  SymbolTableElement* useSymbolAt(unsigned long long address) const;
  void showLookUp(unsigned long long address) const;

  static std::vector<PerfRecordMMap*> _allMaps;  ///< in order of construction
  static MapIndex _sortedMaps;

  unsigned long long _start = 0;
  unsigned long long _length = 0;
  unsigned long long _symbolBase = 0;  ///< base of the file's symbol addresses
  const char* _fileName = "";          ///< owned by SymbolTable
  unsigned int _pidKey = 0;
  unsigned int _useCount = 0;  ///< uses by samples; an unused map is not written
  PerfRecordComm* _processRecord = nullptr;
  SymbolTable* _symbols = nullptr;
  std::uint32_t _symbolsTicket = 0;  ///< to be awaited before the symbols are used
};
