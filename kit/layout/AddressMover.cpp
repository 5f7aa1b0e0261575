#include "layout/AddressMover.h"

#include <algorithm>
#include <optional>

namespace zelkit {

/// Learns the mapping of an address that no sample has touched since the mappings changed. Rare: inlined, it
/// would slow down the usual case.
[[gnu::noinline]] const Process::Shift* AddressMover::learnShift(Process& process, std::uint64_t address) {
  const AddressSpace::Mapping* mapping = process.space->find(address);
  Process::Shift shift;
  if (mapping == nullptr || !place(process, *mapping, shift)) return nullptr;
  const auto next = std::upper_bound(process.starts.begin(), process.starts.end(), mapping->start);
  const auto at = process.shifts.insert(process.shifts.begin() + (next - process.starts.begin()), shift);
  process.starts.insert(next, mapping->start);
  return &*at;
}

bool AddressMover::place(Process& process, const AddressSpace::Mapping& mapping, Process::Shift& shift) {
  const std::uint64_t length = mapping.end - mapping.start;
  const MappedFiles::Place in = _files.placeOf(mapping.entered, mapping.start, length, mapping.offset);
  const auto known = process.places.find(in.file);
  PlacedFile placed = known != process.places.end() ? known->second : PlacedFile{};
  if (known == process.places.end() || placed.end < in.address + length) {
    placed = placeFile(process, in.file, in.address);
    process.places[in.file] = placed;
  }
  if (!placed.placed) return false;
  shift.end = mapping.end;
  shift.file = in.file;
  shift.toSymbol = in.address - mapping.start;
  shift.shift = placed.start - _files[in.file].low + shift.toSymbol;
  const std::uint64_t start = mapping.start + shift.shift;
  if (shift.shift != 0 && process.toldMoves.emplace(mapping.start, start).second)
    _account.moved.push_back({process.pid, start, length, mapping.start, in.file});
  return true;
}

/// Allocates a range for a file in a process and writes the record of its mapping. `firstAddress`: the lowest
/// mapped symbol address, as far as is known.
PlacedFile AddressMover::placeFile(Process& process, std::size_t index, std::uint64_t firstAddress) {
  const MappedFile& file = _files[index];
  const std::uint64_t size = file.end - file.low;
  PlacedFile placed{file.low, file.end, true};
  const bool stays =
      file.fixed && file.end <= Places::kFirst && _places.claim(process.pid, file.low, file.end);
  if (!stays) {
    const std::optional<std::uint64_t> start = _places.allocate(process.pid, size);
    if (!start) {
      count(_account.noPlace, file.name);
      return {0, file.end, false};
    }
    placed.start = *start;
  }
  // With absolute addresses the record need not start at 0.
  const std::uint64_t unused = stays ? firstAddress : 0;
  _records.mapping(process.pid, placed.start + unused, size - unused, file.name);
  count(_account.made, "mmap");
  return placed;
}

}  // namespace zelkit
