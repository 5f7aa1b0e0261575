#include "layout/AddressSpace.h"

#include <iterator>

namespace zelkit {

void AddressSpace::insert(const Mapping& mapping) {
  if (mapping.end <= mapping.start) return;
  cut(mapping.start, mapping.end);
  _mappings.emplace(mapping.start, mapping);
}

void AddressSpace::cut(std::uint64_t start, std::uint64_t end) {
  if (end <= start) return;
  auto next = _mappings.lower_bound(start);
  if (next != _mappings.begin()) {
    Mapping& before = std::prev(next)->second;
    const Mapping whole = before;
    if (whole.end > start) before.end = start;
    if (whole.end > end)
      _mappings.emplace(end, Mapping{end, whole.end, whole.entered, whole.offset + (end - whole.start)});
  }
  while (next != _mappings.end() && next->first < end) {
    const Mapping whole = next->second;
    next = _mappings.erase(next);
    if (whole.end > end)
      _mappings.emplace(end, Mapping{end, whole.end, whole.entered, whole.offset + (end - whole.start)});
  }
}

const AddressSpace::Mapping* AddressSpace::find(std::uint64_t address) const {
  auto next = _mappings.upper_bound(address);
  if (next == _mappings.begin()) return nullptr;
  const Mapping& mapping = std::prev(next)->second;
  return address < mapping.end ? &mapping : nullptr;
}

}  // namespace zelkit
