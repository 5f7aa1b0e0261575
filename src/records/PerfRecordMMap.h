#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "records/AddressLookUps.h"
#include "records/IndexedSequence.h"
#include "records/PerfRecord.h"

class PerfRecordComm;
class PerfRecordSample;
class SymbolTable;
class SymbolTableElement;

/// One memory mapping of one process: an address range and the file behind it. The class answers what code an
/// address belongs to.
///
/// Body of PERF_RECORD_MMAP in linux/perf_event.h: pid (offset 8, 4 bytes), tid (12, 4), start (16, 8),
/// length (24, 8), page offset (32, 8), file name (40, NUL-terminated).
///
/// Addresses fall into three classes on the 32-bit target: the kernel's, above gKernelStart; the stack's,
/// 0xB0000001 to 0xBEFFFFFF; and mapped ones, which are searched for. A range includes the address behind its
/// last one.
class PerfRecordMMap : public PerfRecord {
 public:
  /// All 0 and null but for the key.
  PerfRecordMMap();
  /// Enters the tables and loads the file's symbols. The first of these also builds the three standing maps.
  PerfRecordMMap(unsigned int pid, unsigned int tid, unsigned long long start, unsigned long long length,
                 unsigned long long pageOffset, std::string_view name);

  static PerfRecord* createInstance(char* record);

  /// The map that covers the address, or null. The tid is not looked at: where a process has maps from
  /// several threads, the search may miss one.
  static PerfRecordMMap* findMap(unsigned long long address, unsigned int pid, unsigned int tid);
  /// The same for the sample's own address; marks the symbol there as used.
  static PerfRecordMMap* findMap(PerfRecordSample* sample);
  /// Any map of the sample's process, or null.
  static PerfRecordMMap* findPidMap(PerfRecordSample* sample);

  /// A home for an address that no map covers, by 64 KiB units: a made-up symbol below a map of the process
  /// if it has any, else a map of its own. Addresses of the first unit go to the lost-and-found map. Null
  /// only while there is not even that.
  static PerfRecordMMap* createSyntheticMap(PerfRecordSample* sample, unsigned int pid, unsigned int tid,
                                            unsigned long long address);

  /// Finds the map of an address in a back-trace of the sample, or makes a synthetic one, and counts one use
  /// of it and of the symbol there. Answers the key of the symbol or else of the map; 0 if there is no map.
  static unsigned int useAddress(PerfRecordSample& sample, unsigned long long address);
  /// The same for the sample's own address, which counts two uses of the symbol.
  static unsigned int useOwnAddress(PerfRecordSample& sample);

  using PerfRecord::getKey;
  /// The key of the symbol at the address, which becomes used, or else of the map.
  virtual unsigned int getKey(unsigned long long address);

  /// Marks the symbol at the sample's address as used.
  void addSample(PerfRecordSample* sample);

  /// -1 for another pid, 2 for another tid, 1 for an address outside the range, 0 for a match.
  int checkRange(unsigned long long address, unsigned int pid, unsigned int tid) const;

  /// Looks up the process, unless it is known already.
  void addProcessRef();
  static void findMissingProcessRefs();

  /// Loads the symbols of the file; a null name does nothing.
  void findMoreSymbols(const char* name);

  void countUse() { ++_useCount; }

  virtual void setName(std::string_view name);
  virtual void show() const;
  const char* perfRecordType() const override { return "mmap"; }
  unsigned int getLen() const override { return static_cast<unsigned int>(_length); }
  unsigned long long getAddress() const override { return _start; }
  const char* getName() const override { return _fileName.c_str(); }
  int _out(PerfJSONWriter& writer) override;

  /// The section "libraries": the standing maps, then the maps that samples used.
  static void outAll(PerfJSONWriter& writer);

  static unsigned int _indexTotal;  ///< the last key given; maps and symbols share the counter
  static PerfRecordMMap* _lostAndFound;
  static PerfRecordMMap* _kernelMap;
  static PerfRecordMMap* _stackMap;

 private:
  struct SortedMap {
    unsigned long long sortKey;  ///< of 16 bits each of pid and tid, and the start
    PerfRecordMMap* map;
  };

  template <typename Matches>
  static PerfRecordMMap* searchMaps(unsigned int pid, unsigned long long sought, unsigned long long keyBits,
                                    Matches matches);
  static void buildStandingMaps();
  static PerfRecordMMap* standingMap(std::string_view name, unsigned long long start,
                                     unsigned long long length, unsigned int pidKey, SymbolTable* symbols);
  void enterSorted();
  SymbolTableElement* symbolAt(unsigned long long address) const;
  SymbolTableElement* useSymbolAt(unsigned long long address) const;
  void useSymbol(SymbolTableElement& symbol) const;
  void showLookUp(unsigned long long address) const;
  static std::uint32_t mapCount() { return static_cast<std::uint32_t>(_allMaps.size()); }
  static bool isGood(const AddressLookUps::Answer& answer, const PerfRecordSample& sample,
                     unsigned long long address);
  static AddressLookUps::Answer lookUpAndUse(PerfRecordSample& sample, unsigned long long address);
  static const AddressLookUps::Answer& use(PerfRecordSample& sample, unsigned long long address);
  static unsigned int keyOf(const AddressLookUps::Answer& answer);

  static std::vector<PerfRecordMMap*> _allMaps;   ///< in order of construction
  static IndexedSequence<SortedMap> _sortedMaps;  ///< ascending by sort key

  unsigned long long _start = 0;
  unsigned long long _length = 0;
  unsigned long long _symbolBase = 0;  ///< what the file's symbol addresses are relative to
  std::string _fileName;
  unsigned int _pidKey = 0;
  unsigned int _useCount = 0;  ///< references from samples; a map without any is not written
  PerfRecordComm* _processRecord = nullptr;
  SymbolTable* _symbols = nullptr;
};
