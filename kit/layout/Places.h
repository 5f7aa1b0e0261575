#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <unordered_map>
#include <vector>

#include "layout/SeededHash.h"

namespace zelkit {

/// Gives out ranges of the addresses in which the engine looks mappings up one by one and takes their symbols
/// as counted from their start: 0x40000000 to 0xAFFFFFFF. Below, it takes symbols for absolute; above, it
/// sees a stack.
///
/// The engine sorts maps by 16 bits of the process id, so processes that share them share one set of ranges.
class Places {
 public:
  static constexpr std::uint64_t kFirst = 0x40000000;
  static constexpr std::uint64_t kLimit = 0xB0000000;

  /// Ranges end below the kernel's addresses, wherever those begin.
  void limit(std::uint64_t kernelStart);

  /// Returns the start of a fresh range, or nothing if there is none left. The engine counts the byte after a
  /// map as the map's, so ranges do not touch.
  std::optional<std::uint64_t> allocate(std::uint32_t pid, std::uint64_t size);

  /// Takes a range below kFirst for a process, as programs that run where they were linked have it. Returns
  /// false if another process that shares its 16 bits has a part of it.
  bool claim(std::uint32_t pid, std::uint64_t start, std::uint64_t end);

  /// Returns where an address of no mapping goes: it stays, and what surrounds it is given to nobody, unless
  /// it lies in a range that was given out; it then goes to a fresh one of its own.
  std::uint64_t keep(std::uint32_t pid, std::uint64_t address);

 private:
  struct Claim {
    std::uint64_t start;
    std::uint64_t end;
    std::uint32_t pid;
  };
  /// What processes with one set of 16 bits have.
  struct Taken {
    std::uint64_t next = kFirst;
    std::set<std::uint64_t> kept;  ///< units that addresses of no mapping have
    std::unordered_map<std::uint64_t, std::uint64_t, SeededHash> moved;  ///< such units, where they went
    std::vector<Claim> claims;
  };

  Taken& takenOf(std::uint32_t pid) { return _taken[static_cast<std::uint16_t>(pid)]; }

  std::uint64_t _limit = kLimit;
  std::unordered_map<std::uint16_t, Taken> _taken;
};

}  // namespace zelkit
