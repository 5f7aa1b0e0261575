#include "records/PerfRecordMMap.h"

#include <algorithm>
#include <cstdio>

#include "json/DocumentSection.h"
#include "records/AddressLookUps.h"
#include "records/PerfFactory.h"
#include "records/PerfRecordComm.h"
#include "records/PerfRecordSample.h"
#include "records/RecordView.h"
#include "run/Settings.h"
#include "symbols/SymbolTable.h"

unsigned int PerfRecordMMap::_indexTotal = 0;
PerfRecordMMap* PerfRecordMMap::_lostAndFound = nullptr;
PerfRecordMMap* PerfRecordMMap::_kernelMap = nullptr;
PerfRecordMMap* PerfRecordMMap::_stackMap = nullptr;
std::vector<PerfRecordMMap*> PerfRecordMMap::_allMaps;
IndexedSequence<PerfRecordMMap::SortedMap> PerfRecordMMap::_sortedMaps;

namespace {

const PerfAddFactory mmapFactory(1, "mmap", PerfRecordMMap::createInstance);

constexpr unsigned long long kStackStart = 0xB0000000;
constexpr unsigned long long kStackEnd = 0xBEFFFFFF;
/// A mapping from here up is a relocatable library, one below it an executable with absolute symbol
/// addresses.
constexpr unsigned long long kLibraryStart = 0x40000000;
constexpr unsigned long long kSyntheticUnit = 0x10000;

constexpr unsigned long long kPidOfSortKey = 0xFFFF000000000000;
constexpr unsigned long long kSortKeyWithoutTid = 0xFFFF0000FFFFFFFF;

constexpr SectionColumn kColumns[] = {
    {"key", "db key for this process element used in other structs as a reference"},
    {"pidkey", "key or reference to the process"},
    {"name", "name of the library or function"},
    {"startAddress", "start address of this memory map"},
    {"sectionSize", "length of the memory map"},
};

AddressClass classOf(unsigned long long address) {
  if (address > gKernelStart) return AddressClass::kernel;
  return address > kStackStart && address <= kStackEnd ? AddressClass::stack : AddressClass::mapped;
}

unsigned long long pidPart(unsigned int pid) {
  return static_cast<unsigned long long>(pid) << 48;
}

unsigned long long tidPart(unsigned int tid) {
  return static_cast<unsigned long long>(tid & 0xFFFF) << 32;
}

AddressLookUps lookUps;

unsigned long long pageOf(unsigned long long address) {
  return address & ~(kSyntheticUnit - 1);
}

std::string syntheticLabel(const PerfRecordComm& process, unsigned long long page) {
  char address[24];
  std::snprintf(address, sizeof address, "%08llx", page);
  return std::string("{") + process.getName() + "-" + address + "}";
}

}  // namespace

/// The search that findMap and findPidMap share: the first probed map of the process that matches, or null. A
/// map whose key, in the bits that count, is not above the sought one sends the search upward. A probe at the
/// count ends it.
template <typename Matches>
PerfRecordMMap* PerfRecordMMap::searchMaps(unsigned int pid, unsigned long long sought,
                                           unsigned long long keyBits, Matches matches) {
  const int count = static_cast<int>(_sortedMaps.size());
  int low = 0;
  int high = count;
  int middle = count / 2;
  while (low <= middle && middle <= high && middle < count) {
    const SortedMap& probed = _sortedMaps[static_cast<std::size_t>(middle)];
    // A key has all bits of its process's, so most maps of others need not be looked at.
    const bool mayMatch = (pidPart(pid) & ~probed.sortKey) == 0;
    if (mayMatch && probed.map->pid == pid && matches(*probed.map)) return probed.map;
    if (sought >= (probed.sortKey & keyBits)) {
      low = middle + 1;
    } else {
      high = middle - 1;
    }
    middle = low + (high - low) / 2;
  }
  return nullptr;
}

PerfRecordMMap::PerfRecordMMap() {
  key = ++_indexTotal;
}

PerfRecordMMap::PerfRecordMMap(unsigned int pid_, unsigned int tid_, unsigned long long start,
                               unsigned long long length, unsigned long long /*pageOffset*/,
                               std::string_view name)
    : PerfRecord(pid_, tid_), _start(start), _length(length), _fileName(withoutDeletedMark(name)) {
  // Here and no earlier: the kernel map takes its bounds and symbols from what start-up has found.
  if (_lostAndFound == nullptr) buildStandingMaps();
  key = ++_indexTotal;
  if (start >= kLibraryStart && start < gKernelStart) _symbolBase = start;
  addProcessRef();
  findMoreSymbols(_fileName.c_str());
  if (gVerbosity > 0) PerfRecordMMap::show();
  _allMaps.push_back(this);
  enterSorted();
}

void PerfRecordMMap::buildStandingMaps() {
  char stackName[64];
  std::snprintf(stackName, sizeof stackName, "{stack:%08x-%08x}", static_cast<unsigned int>(kStackStart),
                static_cast<unsigned int>(kStackEnd));
  const unsigned int kernelKey = PerfRecordComm::_kernelArea.getKey();
  _lostAndFound = standingMap("lostAndFound", 0, 0, PerfRecordComm::_lostAndFound.getKey(), nullptr);
  _kernelMap =
      standingMap("kernel", gKernelStart, gKernelEnd - gKernelStart, kernelKey, SymbolTable::_kernelSymTable);
  _stackMap = standingMap(stackName, kStackStart, kStackEnd - kStackStart, kernelKey, nullptr);
}

PerfRecordMMap* PerfRecordMMap::standingMap(std::string_view name, unsigned long long start,
                                            unsigned long long length, unsigned int pidKey,
                                            SymbolTable* symbols) {
  auto* map = new PerfRecordMMap;
  map->_fileName = name;
  map->_start = start;
  map->_length = length;
  map->_pidKey = pidKey;
  map->_symbols = symbols;
  return map;
}

void PerfRecordMMap::enterSorted() {
  const unsigned long long sortKey = pidPart(pid) | tidPart(tid) | _start;
  std::size_t place = 0;
  for (std::size_t end = _sortedMaps.size(); place < end;) {
    const std::size_t middle = place + (end - place) / 2;
    if (_sortedMaps[middle].sortKey < sortKey) {
      place = middle + 1;
    } else {
      end = middle;
    }
  }
  _sortedMaps.insert(place, {sortKey, this});
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
  // The maps are sorted with their tids and searched without them, so a map of another thread may be missed.
  // Such an address gets a synthetic home.
  return searchMaps(pid, pidPart(pid) | address, kSortKeyWithoutTid, [&](const PerfRecordMMap& map) {
    return address >= map._start && address <= map._start + map._length;
  });
}

PerfRecordMMap* PerfRecordMMap::findMap(PerfRecordSample* sample) {
  const unsigned long long address = sample->getAddress();
  PerfRecordMMap* map = findMap(address, sample->pid, sample->tid);
  // A stack address is looked for among the kernel's symbols, although the stack map is the answer.
  PerfRecordMMap* symbolMap = classOf(address) == AddressClass::mapped ? map : _kernelMap;
  if (symbolMap != nullptr) symbolMap->addSample(sample);
  return map;
}

PerfRecordMMap* PerfRecordMMap::findPidMap(PerfRecordSample* sample) {
  const unsigned long long address = sample->getAddress();
  if (classOf(address) != AddressClass::mapped) return findMap(address, sample->pid, sample->tid);
  return searchMaps(sample->pid, pidPart(sample->pid), kPidOfSortKey,
                    [](const PerfRecordMMap&) { return true; });
}

PerfRecordMMap* PerfRecordMMap::createSyntheticMap(PerfRecordSample* sample, unsigned int pid,
                                                   unsigned int tid, unsigned long long address) {
  const unsigned long long page = pageOf(address);
  if (page == 0) return _lostAndFound;
  PerfRecordMMap* map = findPidMap(sample);
  const PerfRecordComm* process = PerfRecordComm::findProcessRecord(pid, tid);
  if (process == nullptr) {
    map = _lostAndFound;
    process = PerfRecordComm::findProcessRecord(pid, 0);
    if (process == nullptr) process = &PerfRecordComm::_lostAndFound;
  }
  if (map == nullptr)
    return new PerfRecordMMap(pid, tid, page, kSyntheticUnit, 0, syntheticLabel(*process, page));
  SymbolTableElement* symbol = SymbolTable::findSyntheticEntry(page);
  if (symbol == nullptr)
    symbol = SymbolTable::addSyntheticEntry(page, kSyntheticUnit, syntheticLabel(*process, page));
  map->countUse();
  map->useSymbol(*symbol);
  return map;
}

SymbolTableElement* PerfRecordMMap::symbolAt(unsigned long long address) const {
  return _symbols->findElement(address - _symbolBase);
}

void PerfRecordMMap::useSymbol(SymbolTableElement& symbol) const {
  if (symbol.key() == 0) symbol.setKey(++_indexTotal);
  symbol.markUsed(symbol.address());
  symbol.setMapKey(key);
}

/// Counts one use of the symbol at the address; null if there is none.
SymbolTableElement* PerfRecordMMap::useSymbolAt(unsigned long long address) const {
  if (_symbols == nullptr) return nullptr;
  SymbolTableElement* symbol = symbolAt(address);
  if (symbol != nullptr) useSymbol(*symbol);
  return symbol;
}

unsigned int PerfRecordMMap::getKey(unsigned long long address) {
  if (gVerbosity > 0) showLookUp(address);
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

/// Whether an answer found at the address's place is about it, and nothing that it rests on has changed
/// since.
bool PerfRecordMMap::isGood(const AddressLookUps::Answer& answer, const PerfRecordSample& sample,
                            unsigned long long address) {
  if (answer.address != address || answer.pid != sample.pid || answer.tid != sample.tid) return false;
  if (answer.map == nullptr || answer.maps != mapCount()) return false;
  return answer.page == nullptr ||
         (answer.processes == PerfRecordComm::count() && answer.sampleClass == classOf(sample.getAddress()));
}

/// Looks an address of the sample up, making a synthetic home for one that no map covers, and counts the
/// uses.
AddressLookUps::Answer PerfRecordMMap::lookUpAndUse(PerfRecordSample& sample, unsigned long long address) {
  AddressLookUps::Answer answer = {
      address, sample.pid, sample.tid, mapCount(), PerfRecordComm::count(), classOf(sample.getAddress())};
  answer.map = findMap(address, sample.pid, sample.tid);
  if (answer.map == nullptr) {
    answer.map = createSyntheticMap(&sample, sample.pid, sample.tid, address);
    if (answer.maps == mapCount()) answer.page = SymbolTable::findSyntheticEntry(pageOf(address));
  }
  if (answer.map == nullptr) return answer;
  if (gVerbosity > 0) answer.map->showLookUp(address);
  answer.map->countUse();
  answer.symbol = answer.map->useSymbolAt(address);
  return answer;
}

const AddressLookUps::Answer& PerfRecordMMap::use(PerfRecordSample& sample, unsigned long long address) {
  AddressLookUps::Answer& answer = lookUps(address, sample.pid, sample.tid);
  // A verbose run tells of every look-up.
  if (gVerbosity > 0 || !isGood(answer, sample, address)) return answer = lookUpAndUse(sample, address);
  answer.map->countUse();
  if (answer.symbol != nullptr) answer.symbol->countUse();
  if (answer.page != nullptr) {
    answer.map->countUse();
    answer.page->countUse();
  }
  return answer;
}

unsigned int PerfRecordMMap::keyOf(const AddressLookUps::Answer& answer) {
  if (answer.symbol != nullptr) return answer.symbol->key();
  return answer.map != nullptr ? answer.map->key : 0;
}

unsigned int PerfRecordMMap::useAddress(PerfRecordSample& sample, unsigned long long address) {
  return keyOf(use(sample, address));
}

unsigned int PerfRecordMMap::useOwnAddress(PerfRecordSample& sample) {
  const unsigned long long address = sample.getAddress();
  if (gVerbosity > 0 || classOf(address) == AddressClass::stack) {
    // In the stack's class the symbol counts where findMap looks for it, which is not the map that it
    // answers.
    if (findMap(&sample) == nullptr && gVerbosity > 0) std::puts("SAMP: no map key");
    return keyOf(lookUpAndUse(sample, address));
  }
  const AddressLookUps::Answer& answer = use(sample, address);
  if (answer.symbol != nullptr && answer.page == nullptr) answer.symbol->countUse();
  return keyOf(answer);
}

int PerfRecordMMap::checkRange(unsigned long long address, unsigned int pid_, unsigned int tid_) const {
  if (pid != pid_) return -1;
  if (tid_ != 0 && tid != tid_) return 2;
  return address < _start || address > _start + _length ? 1 : 0;
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
  if (name != nullptr) _symbols = SymbolTable::findAndRead(name);
}

void PerfRecordMMap::setName(std::string_view name) {
  _fileName = name;
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
  writer.writeNamed("name", _fileName.c_str());
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
