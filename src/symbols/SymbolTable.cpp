#include "symbols/SymbolTable.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <utility>

#include "base/KeyTable.h"
#include "json/DocumentSection.h"
#include "json/PerfJSONWriter.h"
#include "run/Settings.h"
#include "symbols/FileNames.h"

std::vector<std::string> SymbolTable::_paths;
std::vector<SymbolTable*> SymbolTable::_allSymbolTables;
SymbolTable* SymbolTable::_kernelSymTable = nullptr;
SymbolTable* SymbolTable::_syntheticSymTable = nullptr;

namespace {

/// Tables by the name of their file, and by its base name. Null for a name without a table.
std::map<std::string_view, SymbolTable*> _symbolTables;
KeyTable<SymbolTableElement> _synthetics;  // by page

/// Storage of the names above.
NameStore fileNames;

constexpr SectionColumn kColumns[] = {
    {"key", "key for this symbol"},
    {"name", "name of this symbol"},
    {"startAddress", "Base address of this function or symbol"},
    {"sectionSize", "Size of this function or symbol"},
    {"maps", "array of maps for this sample"},
};

}  // namespace

SymbolTable::SymbolTable() : _fileName("default"), _tableElement(_fileName, 0, 0, nullptr, 0) {
  _allSymbolTables.push_back(this);
  enter(_fileName);
}

const char* SymbolTable::sharedName(std::string_view name) {
  const auto found = _symbolTables.find(name);
  if (found != _symbolTables.end()) return found->first.data();
  const std::string_view kept = fileNames.keep(name);
  _symbolTables.emplace(kept, nullptr);
  return kept.data();
}

SymbolTable::SymbolTable(const char* name, unsigned long long address, unsigned long long size)
    : _fileName(sharedName(name)), _tableElement(_fileName, address, size, nullptr, 0) {
  _allSymbolTables.push_back(this);
  enterWithBaseName(_fileName);
}

SymbolTable* SymbolTable::emptyTable(const char* name) {
  static SymbolTable* shared = nullptr;
  // A verbose run prints every table.
  if (shared == nullptr || verbose()) return shared = new SymbolTable(name, 0, 0);
  shared->enterWithBaseName(sharedName(name));
  return shared;
}

SymbolTable::~SymbolTable() {
  if (!_bypassDestructor) return;
  static_cast<void>(_storage.release());
  static_cast<void>(_sourced.release());
}

/// Registers the table under a name, which is not copied, unless another table has that name already.
void SymbolTable::enter(const char* name) {
  SymbolTable*& table = _symbolTables[name];
  if (table == nullptr) table = this;
}

void SymbolTable::enterWithBaseName(const char* name) {
  enter(name);
  if (verbose()) std::printf("Symtab adding %s\n", name);
  const char* const slash = std::strrchr(name, '/');
  if (slash == nullptr) return;
  enter(slash + 1);
  if (verbose()) std::printf("Symtab adding %s\n", slash + 1);
}

SymbolTableElement* SymbolTable::addElement(unsigned long long start, unsigned long long size,
                                            std::string_view name, FileNames* file, unsigned int line) {
  if (start > _highAddress) _highAddress = start;
  if (start < _lowAddress) _lowAddress = start;
  if (!_storage) _storage = std::make_unique<Storage>();
  SymbolTableElement& element =
      _storage->symbols.emplace_back(_storage->names.keep(name), start, size, file, line);
  _storage->ranges.push_back({start, start + element.size()});
  return &element;
}

const std::deque<SymbolTableElement>& SymbolTable::elements() const {
  static const std::deque<SymbolTableElement> none;
  return _storage ? _storage->symbols : none;
}

void SymbolTable::setSource(std::unique_ptr<SymbolSource> source) {
  if (source == nullptr) return;
  _lowAddress = source->lowest();
  _highAddress = source->highest();
  _sourced = std::make_unique<Sourced>();
  _sourced->source = std::move(source);
}

SymbolTableElement* SymbolTable::findInSource(unsigned long long address) const {
  const std::size_t number = _sourced->source->find(address);
  if (number == SymbolSource::kNone) return nullptr;
  if (SymbolTableElement* known = _sourced->byNumber.find(number); known != nullptr) return known;
  const SymbolSource::Symbol symbol = _sourced->source->at(number);
  SymbolTableElement& element = _sourced->found.emplace_back(_sourced->names.keep(symbol.name), symbol.start,
                                                             symbol.size, symbol.file, symbol.line);
  _sourced->byNumber.add(number, &element);
  return &element;
}

std::vector<const SymbolTableElement*> SymbolTable::inOrder() const {
  std::vector<const SymbolTableElement*> symbols;
  if (_sourced)
    for (const SymbolTableElement& symbol : _sourced->found) symbols.push_back(&symbol);
  std::sort(symbols.begin(), symbols.end(),
            [](const SymbolTableElement* left, const SymbolTableElement* right) {
              return left->address() < right->address();
            });
  for (const SymbolTableElement& symbol : elements()) symbols.push_back(&symbol);
  return symbols;
}

SymbolTableElement* SymbolTable::findElement(unsigned long long address) const {
  if (_sourced) {
    // What was added lies after the symbols of the source.
    SymbolTableElement* const found = findInSource(address);
    return found != nullptr || address <= _sourced->source->highest() ? found : findElementLinear(address);
  }
  const int count = static_cast<int>(elements().size());
  int low = 0;
  int high = count;
  int middle = count / 2;
  // A table of one element never matches: the first probe is at n / 2 == 0, which means "not found".
  // Recordings in the field were resolved this way, so the document must not change.
  if (middle == 0) return nullptr;
  while (low <= middle && middle <= high && middle < count) {
    const auto index = static_cast<std::size_t>(middle);
    const Range& range = _storage->ranges[index];
    if (address < range.start) {
      high = middle - 1;
    } else {
      low = middle + 1;
      // The boundary of two symbols belongs to both.
      if (address <= range.end) return &_storage->symbols[index];
    }
    middle = low + ((high - low) >> 1);
  }
  return nullptr;
}

SymbolTableElement* SymbolTable::findElementLinear(unsigned long long address) const {
  if (!_storage) return nullptr;
  for (std::size_t i = 0; i < _storage->ranges.size(); ++i)
    if (_storage->ranges[i].start <= address && address <= _storage->ranges[i].end)
      return &_storage->symbols[i];
  return nullptr;
}

void SymbolTable::createSyntheticTable() {
  _syntheticSymTable = new SymbolTable;
}

SymbolTableElement* SymbolTable::addSyntheticEntry(unsigned long long address, unsigned long long size,
                                                   std::string_view name) {
  if (SymbolTableElement* known = findSyntheticEntry(address); known != nullptr) return known;
  SymbolTableElement* element = _syntheticSymTable->addElement(address, size, name, nullptr, 0);
  _synthetics.add(address, element);
  return element;
}

SymbolTableElement* SymbolTable::findSyntheticEntry(unsigned long long address) {
  return _synthetics.find(pageOf(address));
}

SymbolTable* SymbolTable::findExistingSymbolTable(const std::string& name) {
  const auto found = _symbolTables.find(name);
  return found != _symbolTables.end() ? found->second : nullptr;
}

void SymbolTable::out(PerfJSONWriter& writer, unsigned int) const {
  for (const SymbolTableElement* element : inOrder())
    if (element->used()) element->out(writer, 0);
}

void SymbolTable::outAll(PerfJSONWriter& writer) {
  writeSection(writer, "functions", kColumns, [&] {
    for (const SymbolTable* table : _allSymbolTables) table->out(writer, 0);
  });
}

void SymbolTable::outKeys(PerfJSONWriter& writer) const {
  writer.writeArrayStart("smapkeys");
  writer.writeNamed("smapkeys2", 777U);
  for (const SymbolTableElement* element : inOrder())
    if (element->used()) writer.writeNamed("smk", element->key());
  writer.writeArrayEnd();
}

void SymbolTable::show() const {
  for (const SymbolTableElement* element : inOrder()) element->show();
}

void SymbolTable::showAllUsed() const {
  if (_tableElement.used()) _tableElement.show();
  bool headShown = false;
  for (const SymbolTableElement* element : inOrder()) {
    if (!element->used()) continue;
    if (!headShown) std::printf("----------\n%s\n----------\n", _fileName);
    headShown = true;
    element->show();
  }
}

void SymbolTable::showAllTablesUsed() {
  for (const SymbolTable* table : _allSymbolTables) table->showAllUsed();
  if (_kernelSymTable == nullptr) return;
  _kernelSymTable->showAllUsed();
  // Shows the kernel's table again instead of the synthetic one: readers of this output expect that.
  if (_syntheticSymTable != nullptr) _kernelSymTable->showAllUsed();
}
