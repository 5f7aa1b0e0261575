#include "symbols/SourceLines.h"

#include <gelf.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

#include "symbols/CheckedFile.h"
#include "symbols/ElfSections.h"
#include "symbols/LineTable.h"

namespace zelkit {

namespace {

using DwarfHandle = std::unique_ptr<Dwarf, decltype(&dwarf_end)>;

/// A handle keeps the line tables of all units that it has read, which for a browser would take gigabytes. So
/// a new handle is used after this number of units.
constexpr int kUnitsOfAHandle = 256;
constexpr std::uint32_t kLastLine = 0x7FFFFFFF;

/// Returns the decompressed content of the section ".NAME" or ".zNAME", empty if there is none.
std::string_view contentOf(Elf* elf, std::string_view wanted) {
  std::string_view content;
  forEachSection(elf, [&](Elf_Scn* section, const GElf_Shdr& header, std::string_view name) {
    const bool isOldForm = name.starts_with(".z");
    if (name.empty() || name.substr(isOldForm ? 2 : 1) != wanted || !content.empty()) return;
    if (isOldForm) elf_compress_gnu(section, 0, 0);
    if ((header.sh_flags & SHF_COMPRESSED) != 0) elf_compress(section, 0, 0);
    const Elf_Data* data = elf_getdata(section, nullptr);
    if (data != nullptr && data->d_buf != nullptr)
      content = {static_cast<const char*>(data->d_buf), data->d_size};
  });
  return content;
}

bool isLittleEndian(Elf* elf) {
  const char* identity = elf_getident(elf, nullptr);
  return identity != nullptr && identity[EI_DATA] == ELFDATA2LSB;
}

}  // namespace

bool SourceLines::read(const std::string& path) {
  const Descriptor file = openRegular(path);
  elf_version(EV_CURRENT);
  const std::unique_ptr<Elf, decltype(&elf_end)> elf(
      elf_begin(file.number(), ELF_C_READ_MMAP_PRIVATE, nullptr), elf_end);
  const std::string_view tables = contentOf(elf.get(), "debug_line");
  if (tables.empty()) return false;
  std::sort(_starts.begin(), _starts.end());
  _places.resize(_starts.size());
  if (!isLittleEndian(elf.get()) || !readTables(tables, contentOf(elf.get(), "debug_line_str")))
    readUnits(elf.get());
  return true;
}

/// Reads tables that need no other debug information, which takes long to decompress. Returns false at any
/// other table.
bool SourceLines::readTables(std::string_view tables, std::string_view texts) {
  Bytes rest(tables);
  while (rest.left() != 0) {
    const std::optional<LineTable> table = LineTable::next(rest, texts);
    if (!table) return false;
    table->forEachRow([&](const LineTable::Row& row) {
      Place* place = wanted(row.address);
      if (place != nullptr && row.line != 0 && row.line <= kLastLine)
        set(*place, table->fileName(row.file), row.line);
    });
  }
  return true;
}

void SourceLines::readUnits(Elf* elf) {
  DwarfHandle handle(nullptr, dwarf_end);
  Dwarf_Off offset = 0;
  for (int index = 0;; ++index) {
    if (index % kUnitsOfAHandle == 0)
      handle = DwarfHandle(dwarf_begin_elf(elf, DWARF_C_READ, nullptr), dwarf_end);
    if (handle == nullptr) return;
    Dwarf_Off next = 0;
    std::size_t headerSize = 0;
    if (dwarf_nextcu(handle.get(), offset, &next, &headerSize, nullptr, nullptr, nullptr) != 0) return;
    Dwarf_Die unit;
    if (dwarf_offdie(handle.get(), offset + headerSize, &unit) != nullptr) readUnit(unit);
    if (next <= offset) return;
    offset = next;
  }
}

void SourceLines::readUnit(Dwarf_Die& unit) {
  Dwarf_Lines* rows = nullptr;
  std::size_t count = 0;
  if (dwarf_getsrclines(&unit, &rows, &count) != 0) return;
  for (std::size_t i = 0; i < count; ++i) {
    Dwarf_Line* row = dwarf_onesrcline(rows, i);
    Dwarf_Addr address = 0;
    if (dwarf_lineaddr(row, &address) != 0) continue;
    Place* place = wanted(address);
    if (place == nullptr) continue;
    bool endsSequence = false;
    int line = 0;
    if (dwarf_lineendsequence(row, &endsSequence) != 0 || endsSequence) continue;
    const char* file = dwarf_linesrc(row, nullptr, nullptr);
    if (dwarf_lineno(row, &line) == 0 && line > 0 && file != nullptr)
      set(*place, file, static_cast<std::uint32_t>(line));
  }
}

/// Returns the place of the function that starts at the address, null if there is none or its line is known.
SourceLines::Place* SourceLines::wanted(std::uint64_t address) {
  // Mostly the next address is between the same two starts.
  if (_next > 0 && address <= _starts[_next - 1]) {
    _next = indexFrom(0, address);
  } else if (_next < _starts.size() && _starts[_next] < address) {
    _next = indexFrom(_next + 1, address);
  }
  const bool found = _next < _starts.size() && _starts[_next] == address && _places[_next].line == 0;
  return found ? &_places[_next] : nullptr;
}

/// Returns the index of the first start at or behind `from` that is not below the address.
std::size_t SourceLines::indexFrom(std::size_t from, std::uint64_t address) const {
  const auto begin = _starts.begin() + static_cast<std::ptrdiff_t>(from);
  return static_cast<std::size_t>(std::lower_bound(begin, _starts.end(), address) - _starts.begin());
}

void SourceLines::set(Place& place, std::string file, std::uint32_t line) {
  if (!file.empty()) place = {*_files.emplace(std::move(file)).first, line};
}

SourceLines::Place SourceLines::at(std::uint64_t start) const {
  if (_places.empty()) return {};
  const std::size_t index = indexFrom(0, start);
  return index < _starts.size() && _starts[index] == start ? _places[index] : Place{};
}

}  // namespace zelkit
