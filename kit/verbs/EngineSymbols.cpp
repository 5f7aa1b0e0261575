#include "verbs/EngineSymbols.h"

#include <algorithm>
#include <cstdio>
#include <string>

#include "symbols/Demangler.h"
#include "symbols/FileNames.h"

namespace zelkit {

namespace {

/// Returns the name of code without a symbol, such as "{libc.so.6-0001e650}".
std::string placeName(const MappedFile& file, std::uint64_t address) {
  char text[24];
  std::snprintf(text, sizeof text, "-%08llx}", static_cast<unsigned long long>(address));
  return '{' + file.path.substr(file.path.rfind('/') + 1) + text;
}

FileNames* fileNamed(std::string_view name) {
  return name.empty() ? nullptr : FileNames::findOrCreate(std::string(name).c_str());
}

class FileSymbols : public SymbolSource {
 public:
  FileSymbols(const SymbolList& list, const MappedFile& file) : _list(list), _file(file) { nameFiles(); }

  [[nodiscard]] std::size_t find(unsigned long long address) const override {
    const std::size_t index = _list.find(address + _file.low);
    return index != _list.size() && isMapped(_list.startOf(index)) ? index : kNone;
  }
  Symbol at(std::size_t number) override {
    const zelkit::Symbol symbol = _list[number];
    _name = symbol.name.empty() ? placeName(_file, symbol.address) : readableName(symbol.name);
    // The engine includes the byte after a symbol in the symbol.
    return {.start = symbol.address - _file.low,
            .size = symbol.size - 1,
            .name = _name,
            .file = fileNamed(symbol.file),
            .line = symbol.line};
  }
  [[nodiscard]] unsigned long long lowest() const override { return 0; }
  [[nodiscard]] unsigned long long highest() const override { return _file.end - _file.low; }

 private:
  [[nodiscard]] bool isMapped(std::uint64_t start) const { return start >= _file.low && start < _file.end; }

  /// Enters all source files, as the keys of the used ones must not depend on the order of samples.
  void nameFiles() {
    if (!_list.hasFiles()) return;
    std::string_view last;
    for (std::size_t i = 0; i < _list.size(); ++i) {
      const zelkit::Symbol symbol = _list[i];
      if (symbol.file == last || !isMapped(symbol.address)) continue;
      last = symbol.file;
      fileNamed(last);
    }
  }

  const SymbolList& _list;
  const MappedFile& _file;
  std::string _name;  ///< of the symbol given last
};

class KernelSource : public SymbolSource {
 public:
  KernelSource(const SymbolList& list, std::uint64_t start)
      : _list(list), _start(list.empty() ? start : std::min(start, list[0].address)) {}

  [[nodiscard]] std::size_t find(unsigned long long address) const override {
    const std::size_t index = _list.find(address);
    if (index != _list.size()) return index;
    return address == _start ? _list.size() : kNone;
  }
  Symbol at(std::size_t number) override {
    if (number == _list.size()) return {.start = _start, .name = "[kernel]"};
    const zelkit::Symbol symbol = _list[number];
    _name = readableName(symbol.name);
    return {.start = symbol.address, .size = symbol.size - 1, .name = _name};
  }
  [[nodiscard]] unsigned long long lowest() const override { return _start; }
  [[nodiscard]] unsigned long long highest() const override {
    return _list.empty() ? _start : _list[_list.size() - 1].address;
  }

 private:
  const SymbolList& _list;
  std::uint64_t _start;
  std::string _name;  ///< of the symbol given last
};

}  // namespace

std::unique_ptr<SymbolSource> engineSymbols(const SymbolList& list, const MappedFile& file) {
  return list.empty() ? nullptr : std::make_unique<FileSymbols>(list, file);
}

std::unique_ptr<SymbolSource> engineKernelSymbols(const SymbolList& list, std::uint64_t start) {
  return std::make_unique<KernelSource>(list, start);
}

}  // namespace zelkit
