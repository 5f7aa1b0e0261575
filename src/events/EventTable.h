#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "records/PerfFactory.h"

/// The decoders' factories by the kernel's event number, as wide as a recording's event table makes it.
///
/// Numbers may be anything, so the width is only told: what is stored ends with the numbers that a
/// trace-point can have in its 16 bits.
class EventTable {
 public:
  /// Stores a factory, or null for an event that is not decoded. The table has 4000 slots, or one more than
  /// a larger number, and beyond its width room for as many again, as a vector that is resized would. A
  /// number that falls into that room, or one whose table would not fit a 32-bit target, ends the run with
  /// std::out_of_range.
  void store(unsigned long long eventId, PerfRecordFunction function);

  /// The factory, or null.
  PerfRecordFunction find(std::uint16_t number) const {
    return number < _functions.size() ? _functions[number] : nullptr;
  }
  /// Whether the number is within the table.
  bool covers(std::uint16_t number) const { return number < _size; }

 private:
  void resize(std::size_t size);

  std::size_t _size = 0;
  std::size_t _capacity = 0;
  std::vector<PerfRecordFunction> _functions;
};
