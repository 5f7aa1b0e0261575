#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "base/KeyTable.h"
#include "records/PerfRecord.h"

class SymbolTable;

/// A process or thread named by the recording, and the tables of all of them.
///
/// Body of PERF_RECORD_COMM in linux/perf_event.h: pid (offset 8, 4 bytes), tid (12, 4), name (16,
/// NUL-terminated).
class PerfRecordComm : public PerfRecord {
 public:
  /// Gets the next key and is added to all tables; a table by id keeps the first process of each id.
  PerfRecordComm(unsigned int pid_, unsigned int tid_, std::string_view name);
  /// Is added to the list of all processes only.
  PerfRecordComm();

  /// Renames the process with the record's ids, or creates one. The first record of a run also creates the
  /// process "*init*", pid 1.
  static PerfRecord* createInstance(char* record);

  /// Returns the kernel if both ids are 0; if one is 0, the first process with the other id; otherwise the
  /// exact match. Returns null if there is none, even for an unknown tid of a known process.
  static PerfRecordComm* findProcessRecord(unsigned int pid, unsigned int tid);

  /// Returns the kernel's symbols for an address at or above gKernelStart, otherwise null: maps have their
  /// own symbols, and a process has none.
  SymbolTable* findSymbolTable(unsigned long long address) const;

  /// Returns the number of processes and threads so far.
  static std::uint32_t count() { return static_cast<std::uint32_t>(_elements.size()); }

  virtual void setName(std::string_view name);
  virtual void show() const;
  const char* perfRecordType() const override { return "comm"; }
  const char* getName() const override { return _name; }
  int _out(PerfJSONWriter& writer) override;

  /// Writes the section "processes", in order of construction.
  static void outAll(PerfJSONWriter& writer);

  static PerfRecordComm _kernelArea;
  static PerfRecordComm _lostAndFound;

 private:
  static std::vector<PerfRecordComm*> _elements;
  static unsigned int _runningPidKey;             ///< the last key assigned
  static KeyTable<PerfRecordComm> _mapOfPidTids;  ///< pid in the upper half of the key, tid in the lower
  static KeyTable<PerfRecordComm> _mapOfPid;
  static KeyTable<PerfRecordComm> _mapOfTid;

  const char* _name;  ///< shared by all processes of that name
};
