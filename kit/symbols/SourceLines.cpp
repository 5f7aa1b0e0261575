#include "symbols/SourceLines.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace zelkit {

namespace {

using DwarfHandle = std::unique_ptr<Dwarf, decltype(&dwarf_end)>;

/// A handle keeps the line tables of all units that it has read, which for a browser would take gigabytes. So
/// a new handle is used after this number of units.
constexpr int kUnitsOfAHandle = 256;

DwarfHandle freshHandle(Elf* elf) {
  return {dwarf_begin_elf(elf, DWARF_C_READ, nullptr), dwarf_end};
}

}  // namespace

SourceLines::SourceLines(std::vector<std::uint64_t> starts)
    : _starts(std::move(starts)), _places(_starts.size()) {}

void SourceLines::read(Dwarf* debugInformation, std::uint64_t bias) {
  Elf* elf = dwarf_getelf(debugInformation);
  DwarfHandle handle(nullptr, dwarf_end);
  Dwarf_Off offset = 0;
  for (int unit = 0;; ++unit) {
    if (unit % kUnitsOfAHandle == 0) handle = freshHandle(elf);
    if (handle == nullptr) return;
    Dwarf_Off next = 0;
    std::size_t headerSize = 0;
    if (dwarf_nextcu(handle.get(), offset, &next, &headerSize, nullptr, nullptr, nullptr) != 0) return;
    Dwarf_Die die;
    if (dwarf_offdie(handle.get(), offset + headerSize, &die) != nullptr) readUnit(die, bias);
    if (next <= offset) return;
    offset = next;
  }
}

void SourceLines::readUnit(Dwarf_Die& unit, std::uint64_t bias) {
  Dwarf_Lines* rows = nullptr;
  std::size_t count = 0;
  if (dwarf_getsrclines(&unit, &rows, &count) != 0) return;
  // Rows and starts both ascend. A start without a row has no line.
  std::size_t function = 0;
  for (std::size_t i = 0; i < count; ++i) {
    Dwarf_Line* row = dwarf_onesrcline(rows, i);
    Dwarf_Addr address = 0;
    if (dwarf_lineaddr(row, &address) != 0) continue;
    address += bias;
    if (i == 0 || (function > 0 && address < _starts[function - 1]))
      function = static_cast<std::size_t>(std::lower_bound(_starts.begin(), _starts.end(), address) -
                                          _starts.begin());
    while (function < _starts.size() && _starts[function] < address) ++function;
    if (function == _starts.size()) return;
    if (_starts[function] == address && _places[function].line == 0) take(row, function);
  }
}

void SourceLines::take(Dwarf_Line* row, std::size_t function) {
  bool endsSequence = false;
  int line = 0;
  if (dwarf_lineendsequence(row, &endsSequence) != 0 || endsSequence) return;
  if (dwarf_lineno(row, &line) != 0 || line <= 0) return;
  const char* file = dwarf_linesrc(row, nullptr, nullptr);
  if (file == nullptr) return;
  _places[function] = {*_files.emplace(file).first, static_cast<std::uint32_t>(line)};
}

SourceLines::Place SourceLines::at(std::uint64_t start) const {
  const auto found = std::lower_bound(_starts.begin(), _starts.end(), start);
  if (found == _starts.end() || *found != start) return {};
  return _places[static_cast<std::size_t>(found - _starts.begin())];
}

}  // namespace zelkit
