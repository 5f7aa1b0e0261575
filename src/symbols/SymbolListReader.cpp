#include "symbols/SymbolListReader.h"

#include <array>
#include <cctype>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <map>

#include "base/TargetNumbers.h"
#include "run/Settings.h"
#include "symbols/FileNames.h"
#include "symbols/SymbolTable.h"

namespace {

constexpr const char* VALID_SECTIONS = "TtWw";

constexpr unsigned long long kWideKernelBits = 0xFFFF000000000000;
constexpr unsigned long long kLastUserAddress = 0x2FFFFFFF;

// Above this address the order is not checked: in the kernel's table the symbols of modules, at lower
// addresses, follow its own.
constexpr unsigned long long kLastOrderedAddress = 0xBFFFFFFF;
constexpr unsigned long long kLastOrderedWideAddress = 0xFFFFFFBFFFFFFFFF;

bool isMappingSymbol(const char* line) {
  for (const char* mark = std::strchr(line, '$'); mark != nullptr; mark = std::strchr(mark + 1, '$'))
    if (mark[1] == 'a' || mark[1] == 'd' || mark[1] == 't') return true;
  return false;
}

constexpr std::uint8_t kNoDigit = 16;
constexpr std::array<std::uint8_t, 256> kHexDigits = [] {
  std::array<std::uint8_t, 256> values{};
  values.fill(kNoDigit);
  for (std::uint8_t value = 0; value < kNoDigit; ++value) {
    values[static_cast<unsigned char>("0123456789abcdef"[value])] = value;
    values[static_cast<unsigned char>("0123456789ABCDEF"[value])] = value;
  }
  return values;
}();

/// Parses the hexadecimal digits at the start of the text and returns their end; null if there are none, or
/// more than 64 bits hold. The kernel's table has more than a hundred thousand addresses, and with
/// std::from_chars a profile of 50,000 samples takes 3 % more instructions.
const char* readHex(const char* text, unsigned long long& number) {
  unsigned long long value = 0;
  const char* end = text;
  for (std::uint8_t digit = 0; (digit = kHexDigits[static_cast<unsigned char>(*end)]) != kNoDigit; ++end)
    value = value << 4 | digit;
  number = value;
  return end != text && end - text <= 16 ? end : nullptr;
}

/// Truncates the text at the mark and returns the text after it, or null if there is no mark.
char* cutAt(char* text, char mark) {
  char* found = std::strchr(text, mark);
  if (found == nullptr) return nullptr;
  *found = '\0';
  return found + 1;
}

}  // namespace

/// Reads the next line into _line, up to its size. Returns false at the end of the list, which is detected
/// only after a failed read; that read leaves the last line in the buffer, to be processed again.
bool SymbolListReader::nextLine() {
  if (std::feof(_file) != 0 || std::ferror(_file) != 0) return false;
  [[maybe_unused]] const char* line = std::fgets(_line, kLineSize, _file);
  return true;
}

/// Returns whether the line has a symbol, and sets _address and _type to those of the symbol.
bool SymbolListReader::parseLine() {
  if (isMappingSymbol(_line)) return false;
  // Nearly all lines start with digits, a blank and a letter; scanf, which accepts more forms, is slow.
  const char* const end = readHex(_line, _address);
  if (end != nullptr && end[0] == ' ' && std::isgraph(static_cast<unsigned char>(end[1])) != 0) {
    _type = end[1];
    return true;
  }
  return std::sscanf(_line, "%llx %c ", &_address, &_type) == 2;
}

/// Returns the name in the line, or null. The last type letter is searched for, even within the name, so a
/// name that contains " T " is cut there.
char* SymbolListReader::nameInLine() {
  for (const char* pattern : {" T ", " t ", " W ", " w "})
    if (char* found = std::strstr(_line, pattern); found != nullptr) return found + 3;
  return nullptr;
}

bool SymbolListReader::goesBackward() const {
  const unsigned long long lastOrdered = _wide ? kLastOrderedWideAddress : kLastOrderedAddress;
  return _pending.address <= lastOrdered && _address < _pending.address;
}

/// Cuts the line end of the line just read: the last character of the text that starts where the previous
/// name did. If the line ends right there, the text is empty and the character before it is cut.
void SymbolListReader::cutLineEnd() {
  char* const end = _pendingName + std::strlen(_pendingName);
  end[-1] = '\0';
}

void SymbolListReader::takePending(char* name) {
  _pending.address = _address;
  _pending.file = FileNames::emptyRef();
  _pending.line = 0;
  if (char* fileName = cutAt(name, '\t'); fileName != nullptr) {
    const char* number = cutAt(fileName, ':');
    const int line = number != nullptr ? targetStrtol(number) : 0;
    if (line != 0) {
      _pending.line = static_cast<unsigned int>(line);
      _pending.file = FileNames::findOrCreate(fileName);
    }
  }
  _pending.name = name;
  _pendingName = name;
  _hasPending = true;
}

void SymbolListReader::read() {
  while (nextLine()) {
    if (!parseLine()) continue;
    if (!_hasPending && (_address & kWideKernelBits) == kWideKernelBits) _wide = true;
    if (_kernel && !_wide && _address <= kLastUserAddress) continue;
    if (std::strchr(VALID_SECTIONS, _type) == nullptr) continue;
    if (_hasPending && goesBackward()) return readUnsorted();
    if (_hasPending) cutLineEnd();
    char* name = nameInLine();  // after the cut, which may remove the end of a " T "
    if (name == nullptr) continue;
    if (_hasPending)
      _table.addElement(_pending.address, _address - _pending.address, _pending.name, _pending.file,
                        _pending.line);
    takePending(name);
  }
}

void SymbolListReader::readUnsorted() {
  if (verbose()) std::puts("Unsorted entries in SymbolTable");
  std::map<unsigned long long, std::string> names;
  names[_pending.address] = _pending.name;
  while (nextLine()) {
    if (!parseLine() || std::strchr(VALID_SECTIONS, _type) == nullptr) continue;
    char* name = nameInLine();
    if (name == nullptr) continue;
    cutAt(name, '\t');
    names[_address] = name;
  }
  const auto add = [this](const auto& symbol, unsigned long long size) {
    _table.addElement(symbol.first, size, symbol.second, FileNames::_emptyRef, 0);
  };
  for (auto entry = names.begin(); entry != names.end(); ++entry) {
    if (verbose()) std::printf("%llx => %s\n", entry->first, entry->second.c_str());
    if (entry == names.begin()) continue;
    const auto previous = std::prev(entry);
    add(*previous, entry->first - previous->first);
  }
  if (const auto& last = *names.rbegin(); last.first != 0) add(last, 1);
}
