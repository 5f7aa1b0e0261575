#include "records/PerfRecordMMap.h"

#include <cstdio>

#include "json/DocumentSection.h"
#include "records/PerfFactory.h"
#include "records/PerfRecordComm.h"
#include "records/PerfRecordSample.h"
#include "records/PerfRecordType.h"
#include "records/RecordView.h"
#include "run/Settings.h"
#include "symbols/SymbolTable.h"

unsigned int PerfRecordMMap::_indexTotal = 0;
BackTraceEntries PerfRecordMMap::_callers;
PerfRecordMMap* PerfRecordMMap::_lostAndFound = nullptr;
PerfRecordMMap* PerfRecordMMap::_kernelMap = nullptr;
PerfRecordMMap* PerfRecordMMap::_stackMap = nullptr;
std::vector<PerfRecordMMap*> PerfRecordMMap::_allMaps;
MapIndex PerfRecordMMap::_sortedMaps;

namespace {

const PerfAddFactory mmapFactory(PERF_RECORD_MMAP, "mmap", PerfRecordMMap::createInstance);

/// A mapping from here up is a relocatable library, one below it an executable with absolute symbol
/// addresses.
constexpr unsigned long long kLibraryStart = 0x40000000;

constexpr SectionColumn kColumns[] = {
    {"key", "db key for this process element used in other structs as a reference"},
    {"pidkey", "key or reference to the process"},
    {"name", "name of the library or function"},
    {"startAddress", "start address of this memory map"},
    {"sectionSize", "length of the memory map"},
};

AddressCache addressCache;

std::string syntheticLabel(const PerfRecordComm& process, unsigned long long page) {
  char address[24];
  std::snprintf(address, sizeof address, "%08llx", page);
  return std::string("{") + process.getName() + "-" + address + "}";
}

}  // namespace

PerfRecordMMap::PerfRecordMMap() {
  key = ++_indexTotal;
}

PerfRecordMMap::PerfRecordMMap(unsigned int pid_, unsigned int tid_, unsigned long long start,
                               unsigned long long length, unsigned long long /*pageOffset*/,
                               std::string_view name)
    : PerfRecord(pid_, tid_),
      _start(start),
      _length(length),
      _fileName(SymbolTable::sharedName(withoutDeletedMark(name))) {
  // Not earlier: the bounds and symbols of the kernel map are known only after start-up.
  if (_lostAndFound == nullptr) buildStandingMaps();
  key = ++_indexTotal;
  if (start >= kLibraryStart && start < gKernelStart) _symbolBase = start;
  addProcessRef();
  findMoreSymbols(_fileName);
  if (verbose()) PerfRecordMMap::show();
  _allMaps.push_back(this);
  _sortedMaps.insert(this);
}

void PerfRecordMMap::buildStandingMaps() {
  char stackName[64];
  std::snprintf(stackName, sizeof stackName, "{stack:%08x-%08x}", static_cast<unsigned int>(kStackStart),
                static_cast<unsigned int>(kStackEnd));
  const unsigned int kernelKey = PerfRecordComm::_kernelArea.getKey();
  _lostAndFound = makeStandingMap("lostAndFound", 0, 0, PerfRecordComm::_lostAndFound.getKey(), nullptr);
  _kernelMap = makeStandingMap("kernel", gKernelStart, gKernelEnd - gKernelStart, kernelKey,
                               SymbolTable::_kernelSymTable);
  _stackMap = makeStandingMap(stackName, kStackStart, kStackEnd - kStackStart, kernelKey, nullptr);
}

PerfRecordMMap* PerfRecordMMap::makeStandingMap(std::string_view name, unsigned long long start,
                                                unsigned long long length, unsigned int pidKey,
                                                SymbolTable* symbols) {
  auto* map = new PerfRecordMMap;
  map->setName(name);
  map->_start = start;
  map->_length = length;
  map->_pidKey = pidKey;
  map->_symbols = symbols;
  return map;
}

PerfRecord* PerfRecordMMap::createInstance(char* record) {
  const RecordView view(record);
  return new PerfRecordMMap(view.u32(8), view.u32(12), view.u64(16), view.u64(24), view.u64(32),
                            view.text(40));
}

PerfRecordMMap* PerfRecordMMap::findMap(unsigned long long address, unsigned int pid, unsigned int /*tid*/) {
  switch (classOf(address)) {
    case AddressClass::kernel:
      return _kernelMap;
    case AddressClass::stack:
      return _stackMap;
    case AddressClass::mapped:
      break;
  }
  return _sortedMaps.findCovering(pid, address);
}

PerfRecordMMap* PerfRecordMMap::findMap(PerfRecordSample* sample) {
  const unsigned long long address = sample->getAddress();
  PerfRecordMMap* map = findMap(address, sample->pid, sample->tid);
  // A stack address is looked up among the kernel's symbols, although the result is the stack's map.
  PerfRecordMMap* symbolMap = classOf(address) == AddressClass::stack ? _kernelMap : map;
  if (symbolMap != nullptr) symbolMap->addSample(sample);
  return map;
}

PerfRecordMMap* PerfRecordMMap::findPidMap(unsigned int pid, AddressClass addressClass) {
  switch (addressClass) {
    case AddressClass::kernel:
      return _kernelMap;
    case AddressClass::stack:
      return _stackMap;
    case AddressClass::mapped:
      break;
  }
  return _sortedMaps.findOfProcess(pid);
}

PerfRecordMMap* PerfRecordMMap::findPidMap(PerfRecordSample* sample) {
  return findPidMap(sample->pid, classOf(sample->getAddress()));
}

PerfRecordMMap* PerfRecordMMap::createSyntheticMap(PerfRecordSample* sample, unsigned int pid,
                                                   unsigned int tid, unsigned long long address) {
  const Resolution home = makeHome({address, pid, tid}, classOf(sample->getAddress()));
  countPageUse(home);
  return home.map;
}

/// Implements createSyntheticMap, without counting a use.
Resolution PerfRecordMMap::makeHome(const CodeAddress& code, AddressClass sampleClass) {
  const unsigned long long page = pageOf(code.address);
  if (page == 0) return {.map = _lostAndFound, .unmapped = true};
  PerfRecordMMap* map = findPidMap(code.pid, sampleClass);
  const PerfRecordComm* process = PerfRecordComm::findProcessRecord(code.pid, code.tid);
  if (process == nullptr) {
    map = _lostAndFound;
    process = PerfRecordComm::findProcessRecord(code.pid, 0);
    if (process == nullptr) process = &PerfRecordComm::_lostAndFound;
  }
  if (map == nullptr) {
    map = new PerfRecordMMap(code.pid, code.tid, page, kPageSize, 0, syntheticLabel(*process, page));
    return {.map = map, .unmapped = true};
  }
  SymbolTableElement* symbol = SymbolTable::findSyntheticEntry(page);
  if (symbol == nullptr)
    symbol = SymbolTable::addSyntheticEntry(page, kPageSize, syntheticLabel(*process, page));
  map->link(*symbol);
  return {.map = map, .page = symbol, .unmapped = true};
}

/// Assigns the symbol's key on its first use, and records the map in it.
void PerfRecordMMap::link(SymbolTableElement& symbol) const {
  if (symbol.key() == 0) symbol.setKey(++_indexTotal);
  symbol.setMapKey(key);
}

/// Links and returns the symbol at the address, or returns null if there is none.
SymbolTableElement* PerfRecordMMap::linkSymbolAt(unsigned long long address) const {
  SymbolTable::await(_symbolsTicket);
  SymbolTableElement* symbol = _symbols != nullptr ? _symbols->findElement(address - _symbolBase) : nullptr;
  if (symbol != nullptr) link(*symbol);
  return symbol;
}

/// Counts one use of the symbol at the address and returns it, or returns null if there is none.
SymbolTableElement* PerfRecordMMap::useSymbolAt(unsigned long long address) const {
  SymbolTableElement* symbol = linkSymbolAt(address);
  if (symbol != nullptr) symbol->markUsed(address);
  return symbol;
}

unsigned int PerfRecordMMap::getKey(unsigned long long address) {
  if (verbose()) showLookUp(address);
  const SymbolTableElement* symbol = useSymbolAt(address);
  return symbol != nullptr ? symbol->key() : key;
}

void PerfRecordMMap::showLookUp(unsigned long long address) const {
  std::printf("getKey %s st:%p %llx:%llx\n", getName(), static_cast<void*>(_symbols), address, _symbolBase);
  if (_symbols != nullptr) std::printf("getKey %llx:%llx\n", address, _symbolBase);
}

void PerfRecordMMap::addSample(PerfRecordSample* sample) {
  if (sample != nullptr) useSymbolAt(sample->getAddress());
}

Resolution PerfRecordMMap::lookUp(const CodeAddress& code, AddressClass sampleClass) {
  Resolution resolution = {.map = findMap(code.address, code.pid, code.tid)};
  if (resolution.map == nullptr) resolution = makeHome(code, sampleClass);
  if (resolution.map == nullptr) return resolution;
  if (verbose()) resolution.map->showLookUp(code.address);
  resolution.symbol = resolution.map->linkSymbolAt(code.address);
  return resolution;
}

/// Counts one use of the page's symbol and of the map above it, if the resolution leads to a page.
void PerfRecordMMap::countPageUse(const Resolution& resolution) {
  if (resolution.page == nullptr) return;
  resolution.map->countUse();
  resolution.page->markUsed(resolution.page->address());
}

ResolutionBasis PerfRecordMMap::basisNow(AddressClass sampleClass) {
  return {static_cast<std::uint32_t>(_allMaps.size()), PerfRecordComm::count(), sampleClass};
}

Resolution& PerfRecordMMap::resolve(const CodeAddress& code, ResolutionBasis& basis) {
  // A verbose run prints every look-up.
  Resolution* known = verbose() ? nullptr : addressCache.find(code, basis);
  if (known == nullptr) {
    known = &addressCache.store(code, basis, lookUp(code, basis.sampleClass));
    basis = basisNow(basis.sampleClass);
  }
  Resolution& resolution = *known;
  if (resolution.map == nullptr) return resolution;
  countPageUse(resolution);
  resolution.map->countUse();
  if (resolution.symbol != nullptr) resolution.symbol->markUsed(code.address);
  return resolution;
}

unsigned int PerfRecordMMap::keyOf(const Resolution& resolution) {
  if (resolution.symbol != nullptr) return resolution.symbol->key();
  return resolution.map != nullptr ? resolution.map->key : 0;
}

BackTraceEntries::Index PerfRecordMMap::resolveCaller(const CodeAddress& caller, ResolutionBasis& basis) {
  Resolution& resolution = resolve(caller, basis);
  if (resolution.caller == BackTraceEntries::kNone)
    resolution.caller = _callers.add({caller.address, keyOf(resolution)});
  return resolution.caller;
}

unsigned int PerfRecordMMap::resolveSample(const CodeAddress& sample) {
  const AddressClass sampleClass = classOf(sample.address);
  // A stack address is looked up among the kernel's symbols, see findMap.
  if (sampleClass == AddressClass::stack && _kernelMap != nullptr) _kernelMap->useSymbolAt(sample.address);
  if (verbose() && findMap(sample.address, sample.pid, sample.tid) == nullptr) std::puts("SAMP: no map key");
  ResolutionBasis basis = basisNow(sampleClass);
  const Resolution& resolution = resolve(sample, basis);
  if (resolution.symbol != nullptr && !resolution.unmapped) resolution.symbol->markUsed(sample.address);
  return keyOf(resolution);
}

void PerfRecordMMap::addProcessRef() {
  if (_processRecord != nullptr) return;
  _processRecord = PerfRecordComm::findProcessRecord(pid, tid);
  if (_processRecord != nullptr) _pidKey = _processRecord->getKey();
}

void PerfRecordMMap::findMissingProcessRefs() {
  for (PerfRecordMMap* map : _allMaps) map->addProcessRef();
}

void PerfRecordMMap::findMoreSymbols(const char* name) {
  if (name != nullptr) _symbolsTicket = SymbolTable::request(name, _symbols);
}

void PerfRecordMMap::setName(std::string_view name) {
  _fileName = SymbolTable::sharedName(name);
}

void PerfRecordMMap::show() const {
  std::printf("MMAP k:%u p:%u t:%u a:%llx s:%lld r:%d\n", key, pid, tid, _start,
              static_cast<long long>(_length),
              _processRecord != nullptr ? static_cast<int>(_processRecord->getKey()) : 0);
}

int PerfRecordMMap::_out(PerfJSONWriter& writer) {
  writer.writeArrayStart(nullptr);
  writer.writeNamed("key", key);
  writer.writeNamed("pidkey", _pidKey);
  writer.writeNamed("name", _fileName);
  writer.writeNamed("startAddress", _start);
  writer.writeNamed("sectionSize", _length);
  writer.writeArrayEnd();
  return 0;
}

void PerfRecordMMap::outAll(PerfJSONWriter& writer) {
  writeSection(writer, "libraries", kColumns, [&] {
    for (PerfRecordMMap* map : {_lostAndFound, _kernelMap, _stackMap})
      if (map != nullptr) map->out(writer);
    for (PerfRecordMMap* map : _allMaps)
      if (map->_useCount != 0) map->out(writer);
  });
}
