#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "records/PerfFactory.h"

/// Table of the decoders' factories, indexed by the kernel's event number.
///
/// Event numbers are untrusted. The nominal size is only tracked; storage is capped at the 2^16 numbers that
/// a record can carry.
class EventTable {
 public:
  /// Stores a factory, or null for an event that is not decoded. The nominal size is 4000, or one more than
  /// the largest number so far; the nominal capacity doubles like that of a resized vector. A number between
  /// size and capacity, or one whose table would not fit a 32-bit target, ends the run with
  /// std::out_of_range.
  void store(unsigned long long eventId, PerfRecordFunction function);

  /// Returns the factory of an event number, or null.
  PerfRecordFunction find(std::uint16_t number) const {
    return number < _functions.size() ? _functions[number] : nullptr;
  }
  /// Returns whether the number is below the nominal size.
  bool covers(std::uint16_t number) const { return number < _size; }

 private:
  void resize(std::size_t size);

  std::size_t _size = 0;
  std::size_t _capacity = 0;
  std::vector<PerfRecordFunction> _functions;
};
