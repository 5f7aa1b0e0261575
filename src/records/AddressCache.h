#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "base/FibonacciHash.h"
#include "json/BackTraceEntries.h"
#include "records/AddressClass.h"

class PerfRecordMMap;
class SymbolTableElement;

/// An address of code that a thread runs or returns to.
struct CodeAddress {
  unsigned long long address = 0;
  unsigned int pid = 0;
  unsigned int tid = 0;

  bool operator==(const CodeAddress&) const = default;
};

/// What an address resolves to.
struct Resolution {
  PerfRecordMMap* map = nullptr;
  SymbolTableElement* symbol = nullptr;  ///< in the map; null if it has none at the address
  SymbolTableElement* page = nullptr;    ///< the synthetic symbol under the map, for an unmapped address
  bool unmapped = false;                 ///< no map covers the address; map or page is synthetic
  BackTraceEntries::Index caller = BackTraceEntries::kNone;  ///< the entry of back-traces, once there is one
};

/// What a resolution depends on, besides the address and the thread.
struct ResolutionBasis {
  std::uint32_t maps = 0;                           ///< how many there are
  std::uint32_t processes = 0;                      ///< how many there are
  AddressClass sampleClass = AddressClass::kernel;  ///< of the sample's own address
};

/// Direct-mapped cache of address resolutions, keyed by address, pid and tid: samples contain the same few
/// addresses again and again.
///
/// A new map makes every entry stale. A new process, or a sample of another class, makes the entries with a
/// page stale: the map above the page depends on both.
class AddressCache {
 public:
  /// Returns the resolution stored for the address, or null if there is none or it is stale.
  Resolution* find(const CodeAddress& code, const ResolutionBasis& now) {
    Entry& entry = _entries[slotOf(code)];
    return entry.code == code && isCurrent(entry, now) ? &entry.resolution : nullptr;
  }

  /// Stores a resolution, which replaces another one in its slot. Returns the one stored, which is valid
  /// until the next call.
  Resolution& store(const CodeAddress& code, const ResolutionBasis& basis, const Resolution& resolution) {
    Entry& entry = _entries[slotOf(code)];
    entry = {code, basis, resolution};
    return entry.resolution;
  }

 private:
  static constexpr unsigned int kSlotBits = 16;

  /// Occupies one cache line of the processor, so that a look-up touches only one.
  struct alignas(64) Entry {
    CodeAddress code;
    ResolutionBasis basis;
    Resolution resolution;  ///< without a map in an empty slot
  };

  static std::size_t slotOf(const CodeAddress& code) {
    return fibonacciHash(code.address ^ std::uint64_t{code.pid} << 32 ^ std::uint64_t{code.tid} << 40,
                         kSlotBits);
  }

  static bool isCurrent(const Entry& entry, const ResolutionBasis& now) {
    if (entry.resolution.map == nullptr || entry.basis.maps != now.maps) return false;
    return entry.resolution.page == nullptr ||
           (entry.basis.processes == now.processes && entry.basis.sampleClass == now.sampleClass);
  }

  std::array<Entry, std::size_t{1} << kSlotBits> _entries;
};
