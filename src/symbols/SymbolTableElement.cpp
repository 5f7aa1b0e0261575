#include "symbols/SymbolTableElement.h"

#include <cstdio>
#include <string>

#include "json/PerfJSONWriter.h"
#include "run/Settings.h"
#include "symbols/FileNames.h"

namespace {

constexpr unsigned long long kLargestFunction = 0x100000;
constexpr std::size_t kShortestShownName = 4;

}  // namespace

SymbolTableElement::SymbolTableElement() : _file(FileNames::emptyRef()) {}

SymbolTableElement::SymbolTableElement(std::string_view name, unsigned long long address,
                                       unsigned long long size, FileNames* file, unsigned int line)
    : _name(name),
      _address(address),
      _size(size > kLargestFunction ? 0 : size),
      _file(file != nullptr ? file : FileNames::emptyRef()),
      _lineNumber(line) {
  if (verbose()) show();
}

void SymbolTableElement::noteFirstUse() {
  _file->markUsed(this);
  _used = true;
}

void SymbolTableElement::setMapKey(unsigned int key) {
  _mapKeys.add(key);
}

void SymbolTableElement::show() const {
  std::printf("SYMB k:%05d a:%08llx l:%05llx u%05d n:%s\n", static_cast<int>(_key), _address, _size,
              static_cast<int>(_useCount), std::string(_name).c_str());
}

void SymbolTableElement::out(PerfJSONWriter& writer, unsigned int) const {
  writer.writeArrayStart(nullptr);
  writer.writeNamed("key", _key);
  writer.writeNamed("name", _name.size() < kShortestShownName ? "*BlankName*" : std::string(_name).c_str());
  writer.writeNamed("startAddress", _address);
  writer.writeNamed("sectionSize", _size);
  writer.writeArrayStart("mapkeys");
  for (const unsigned int key : mapKeys()) writer.writeNamed("mk", key);
  writer.writeArrayEnd();
  writer.writeArrayEnd();
}
