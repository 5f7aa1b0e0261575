#include "records/MapIndex.h"

#include "records/PerfRecordMMap.h"

namespace {

constexpr unsigned long long kPidOfSortKey = 0xFFFF000000000000;
constexpr unsigned long long kSortKeyWithoutTid = 0xFFFF0000FFFFFFFF;

unsigned long long pidPart(unsigned int pid) {
  return static_cast<unsigned long long>(pid) << 48;
}

unsigned long long tidPart(unsigned int tid) {
  return static_cast<unsigned long long>(tid & 0xFFFF) << 32;
}

}  // namespace

void MapIndex::insert(PerfRecordMMap* map) {
  const unsigned long long sortKey = pidPart(map->pid) | tidPart(map->tid) | map->getAddress();
  const auto isBefore = [sortKey](const Entry& entry) { return entry.sortKey < sortKey; };
  _entries.insert(_entries.partitionPoint(isBefore), {sortKey, map});
}

/// Returns the first probed map of the process that matches, or null. If a map's key, masked by keyBits, is
/// not above the sought one, the search continues above it. A probe at the number of maps ends it.
template <typename Matches>
PerfRecordMMap* MapIndex::search(unsigned int pid, unsigned long long sought, unsigned long long keyBits,
                                 Matches matches) const {
  const int count = static_cast<int>(_entries.size());
  int low = 0;
  int high = count;
  int middle = count / 2;
  while (low <= middle && middle <= high && middle < count) {
    const Entry& probed = _entries[static_cast<std::size_t>(middle)];
    // A key contains all bits of its process's part, so most maps of other processes are rejected without
    // reading them.
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

PerfRecordMMap* MapIndex::findCovering(unsigned int pid, unsigned long long address) const {
  return search(pid, pidPart(pid) | address, kSortKeyWithoutTid,
                [=](const PerfRecordMMap& map) { return map.checkRange(address, pid, 0) == 0; });
}

PerfRecordMMap* MapIndex::findOfProcess(unsigned int pid) const {
  return search(pid, pidPart(pid), kPidOfSortKey, [](const PerfRecordMMap&) { return true; });
}
