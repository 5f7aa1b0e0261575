#include "symbols/FileNames.h"

#include <cstring>

#include "json/DocumentSection.h"
#include "json/PerfJSONWriter.h"
#include "symbols/SymbolTableElement.h"

FileNames* FileNames::_emptyRef = nullptr;
std::map<std::string, FileNames*> FileNames::_fileTable;
unsigned int FileNames::_runningKey = 0;
std::string FileNames::_ogServer = ZELCONV_OPENGROK_SERVER;
std::string FileNames::_ogProtocol = "http";
bool FileNames::_ogFunctionOnlyLookup = false;

namespace {

constexpr std::size_t kLongestNonName = 4;

constexpr SectionColumn kColumns[] = {
    {"key", "key for this symbol"},
    {"name", "name of this symbol"},
    {"symbols.ref", "ref to symbol using this file"},
    {"symbols.linenum", "ref to line number"},
};

}  // namespace

FileNames::FileNames() : _name("***EMPTY FILE_REF***"), _key(0) {}

FileNames::FileNames(const char* name) : _name(name), _key(++_runningKey) {
  _fileTable.emplace(_name, this);
}

void FileNames::createEmptyRef() {
  if (_emptyRef == nullptr) _emptyRef = new FileNames;
}

FileNames* FileNames::emptyRef() {
  return _emptyRef != nullptr ? _emptyRef : new FileNames;
}

FileNames* FileNames::findOrCreate(const char* name) {
  if (name == nullptr || std::strlen(name) <= kLongestNonName) return emptyRef();
  const auto found = _fileTable.find(name);
  return found != _fileTable.end() ? found->second : new FileNames(name);
}

void FileNames::markUsed(SymbolTableElement* element) {
  _symbols.push_back(element);
}

void FileNames::out(PerfJSONWriter& writer) {
  if (_symbols.empty() || _key == 0) return;
  writer.writeArrayStart(nullptr);
  writer.writeNamed("key", _key);
  writer.writeNamed("name", _name.c_str());
  writer.writeArrayStart("symbols");
  for (const SymbolTableElement* symbol : _symbols) {
    writer.writeArrayStart(nullptr);
    writer.writeNamed("symkey", symbol->key());
    writer.writeNamed("lineNum", symbol->lineNumber());
    writer.writeArrayEnd();
  }
  writer.writeArrayEnd();
  writer.writeArrayEnd();
}

void FileNames::outAll(PerfJSONWriter& writer) {
  writeSection(writer, "files", kColumns, [&] {
    for (const auto& [name, file] : _fileTable) file->out(writer);
  });
}
