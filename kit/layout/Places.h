#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <unordered_map>
#include <vector>

#include "layout/SeededHash.h"

namespace zelkit {

/// Allocates address ranges for mappings, from 0x40000000 to 0xAFFFFFFF, where the engine regards symbol
/// addresses as relative to the mapping's start. Below, it regards them as absolute; above, it assumes a
/// stack.
///
/// The engine sorts maps by the lower 16 bits of the process id, so processes with the same bits share one
/// set of ranges.
class Places {
 public:
  static constexpr std::uint64_t kFirst = 0x40000000;
  static constexpr std::uint64_t kLimit = 0xB0000000;

  /// Sets the lowest address of the kernel, below which ranges must end.
  void limit(std::uint64_t kernelStart);

  /// Returns the start of a new range, or nothing if none is left. Ranges do not touch, as the engine
  /// includes the byte after a map in the map.
  std::optional<std::uint64_t> allocate(std::uint32_t pid, std::uint64_t size);

  /// Claims a range below kFirst for a program at its link address. Returns false if a process with the same
  /// 16 bits has claimed a part of it.
  bool claim(std::uint32_t pid, std::uint64_t start, std::uint64_t end);

  /// Returns the new address for one without a mapping: the same address, whose surroundings are then never
  /// allocated; or, if it is in an allocated range, one in a new range.
  std::uint64_t keep(std::uint32_t pid, std::uint64_t address);

 private:
  struct Claim {
    std::uint64_t start;
    std::uint64_t end;
    std::uint32_t pid;
  };
  /// The addresses in use by processes with the same 16 bits.
  struct Taken {
    std::uint64_t next = kFirst;
    std::set<std::uint64_t> kept;  ///< units with unmapped addresses
    std::unordered_map<std::uint64_t, std::uint64_t, SeededHash>
        moved;  ///< their new units, if they had to move
    std::vector<Claim> claims;
  };

  Taken& takenOf(std::uint32_t pid) { return _taken[static_cast<std::uint16_t>(pid)]; }

  std::uint64_t _limit = kLimit;
  std::unordered_map<std::uint16_t, Taken> _taken;
};

}  // namespace zelkit
