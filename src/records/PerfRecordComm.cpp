#include "records/PerfRecordComm.h"

#include <cstdio>

#include "base/NameStore.h"
#include "json/DocumentSection.h"
#include "records/PerfFactory.h"
#include "records/PerfRecordType.h"
#include "records/RecordView.h"
#include "run/Settings.h"
#include "symbols/SymbolTable.h"

namespace {

SharedNames names;

}  // namespace

std::vector<PerfRecordComm*> PerfRecordComm::_elements;
unsigned int PerfRecordComm::_runningPidKey = 0;
KeyTable<PerfRecordComm> PerfRecordComm::_mapOfPidTids;
KeyTable<PerfRecordComm> PerfRecordComm::_mapOfPid;
KeyTable<PerfRecordComm> PerfRecordComm::_mapOfTid;

// Constructed in this order, after the tables that they enter: the kernel gets key 1, the lost-and-found
// process key 2.
PerfRecordComm PerfRecordComm::_kernelArea(0, 0, "kernel");
PerfRecordComm PerfRecordComm::_lostAndFound(0xFFFFFFFF, 0xFFFFFFFF, "lostAndFound");

namespace {

const PerfAddFactory commFactory(PERF_RECORD_COMM, "comm", PerfRecordComm::createInstance);

constexpr SectionColumn kColumns[] = {
    {"key", "db key for this process element used in other structs as a reference"},
    {"pid", "The process id associated with this name"},
    {"tid", "The thread id"},
    {"name", "Name of the process with the pid and tid"},
};

std::uint64_t bothIds(unsigned int pid, unsigned int tid) {
  return std::uint64_t{pid} << 32 | tid;
}

}  // namespace

PerfRecordComm::PerfRecordComm(unsigned int pid_, unsigned int tid_, std::string_view name)
    : PerfRecord(pid_, tid_), _name(names.keep(withoutDeletedMark(name))) {
  key = ++_runningPidKey;
  _elements.push_back(this);
  _mapOfPid.add(pid, this);
  _mapOfTid.add(tid, this);
  _mapOfPidTids.add(bothIds(pid, tid), this);
  if (verbose()) PerfRecordComm::show();
}

PerfRecordComm::PerfRecordComm() : _name("unknown") {
  key = ++_runningPidKey;
  _elements.push_back(this);
  if (verbose()) PerfRecordComm::show();
}

PerfRecord* PerfRecordComm::createInstance(char* record) {
  static bool initDone = false;
  if (!initDone) {
    initDone = true;
    new PerfRecordComm(1, 1, "*init*");
  }
  const RecordView view(record);
  const unsigned int pid = view.u32(8);
  const unsigned int tid = view.u32(12);
  const std::string_view name = view.text(16);
  PerfRecordComm* process = findProcessRecord(pid, tid);
  if (process == nullptr) return new PerfRecordComm(pid, tid, name);
  process->setName(name);
  return process;
}

PerfRecordComm* PerfRecordComm::findProcessRecord(unsigned int pid, unsigned int tid) {
  if (pid == 0 && tid == 0) return &_kernelArea;
  if (PerfRecordComm* exact = _mapOfPidTids.find(bothIds(pid, tid)); exact != nullptr) return exact;
  if (pid != 0 && tid != 0) return nullptr;
  return pid != 0 ? _mapOfPid.find(pid) : _mapOfTid.find(tid);
}

SymbolTable* PerfRecordComm::findSymbolTable(unsigned long long address) const {
  return address >= gKernelStart ? SymbolTable::_kernelSymTable : nullptr;
}

void PerfRecordComm::setName(std::string_view name) {
  _name = names.keep(withoutDeletedMark(name));
}

void PerfRecordComm::show() const {
  std::printf("PROC k:%d p:%d t:%d %s\n", static_cast<int>(key), static_cast<int>(pid), static_cast<int>(tid),
              _name);
}

int PerfRecordComm::_out(PerfJSONWriter& writer) {
  writer.writeArrayStart(nullptr);
  writer.writeNamed("key", key);
  writer.writeNamed("pid", pid);
  writer.writeNamed("tid", tid);
  writer.writeNamed("name", _name);
  writer.writeArrayEnd();
  return 0;
}

void PerfRecordComm::outAll(PerfJSONWriter& writer) {
  writeSection(writer, "processes", kColumns, [&] {
    for (PerfRecordComm* process : _elements) process->out(writer);
  });
}
