#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "base/KeyTable.h"
#include "records/PerfRecord.h"

class SymbolTable;

/// A process or thread that the recording mentions, and the tables in which everybody else finds one.
///
/// Body of PERF_RECORD_COMM in linux/perf_event.h: pid (offset 8, 4 bytes), tid (12, 4), name (16,
/// NUL-terminated).
class PerfRecordComm : public PerfRecord {
 public:
  /// Takes the next key and enters all tables; in a table by id the first process of that id stays.
  PerfRecordComm(unsigned int pid_, unsigned int tid_, std::string_view name);
  /// Enters the list of all processes only.
  PerfRecordComm();

  /// Renames the process that the record's ids find, or makes a new one. The first record of a run also makes
  /// the process "*init*", pid 1.
  static PerfRecord* createInstance(char* record);

  /// Both ids 0 give the kernel. Otherwise an exact match counts; with one id 0, the first process of the
  /// other id does. Null if there is none: a known process with an unknown tid is not found.
  static PerfRecordComm* findProcessRecord(unsigned int pid, unsigned int tid);

  /// Returns the kernel's symbols for an address at or above gKernelStart, otherwise null: maps know their
  /// symbols themselves, and a process holds none.
  SymbolTable* findSymbolTable(unsigned long long address) const;

  static std::uint32_t count() { return static_cast<std::uint32_t>(_elements.size()); }

  virtual void setName(std::string_view name);
  virtual void show() const;
  const char* perfRecordType() const override { return "comm"; }
  const char* getName() const override { return _name; }
  int _out(PerfJSONWriter& writer) override;

  /// The section "processes", in order of construction.
  static void outAll(PerfJSONWriter& writer);

  static PerfRecordComm _kernelArea;
  static PerfRecordComm _lostAndFound;

 private:
  static std::vector<PerfRecordComm*> _elements;
  static unsigned int _runningPidKey;             ///< the last key given
  static KeyTable<PerfRecordComm> _mapOfPidTids;  ///< pid in the upper half of the key, tid in the lower
  static KeyTable<PerfRecordComm> _mapOfPid;
  static KeyTable<PerfRecordComm> _mapOfTid;

  const char* _name;  ///< shared by all of that name
};
