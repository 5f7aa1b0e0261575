#pragma once

#include <array>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <functional>

#include "records/RecordLosses.h"

class PerfReader;
class PerfRecord;

using PerfRecordFunction = PerfRecord* (*)(char* record);

/// Turns the data section of a recording into records: reads one at a time, resynchronises after damage, and
/// passes the bytes to the creation function that is registered for the type.
///
/// A record begins with a header of 8 bytes: type (4), misc (2), size of the whole record (2), as the
/// kernel's linux/perf_event.h has it.
class PerfFactory {
 public:
  PerfFactory() = default;
  virtual ~PerfFactory() = default;

  /// Registers the creation function of a type. Returns -1 if the type is above 15 or taken, else 0.
  static int addFunction(int type, const char* name, PerfRecordFunction function);

  /// Ensures that the shared record buffer has at least `size` bytes. Growing discards its contents.
  static void allocTmpBuffer(int size);

  /// Reads one record. Returns null at the end of the file, and for a record that no creation function turned
  /// into an object; the reader's status tells the two apart.
  ///
  /// A header that is not plausible starts a scan: two adjacent 32-bit words, the first a plausible type and
  /// the upper half of the second a plausible size, are taken as the next header. Records longer than 256
  /// bytes count as damage, as does what follows the data section.
  ///
  /// A creation function gets the shared buffer with the body at offset 8 and must copy what it keeps.
  static PerfRecord* readNext(PerfReader& reader);

  /// Passes a record to the creation function of its type and returns its result, or null for a type without
  /// one. The bytes must be in the shared buffer.
  static PerfRecord* create(std::uint32_t type, std::uint16_t size, char* bytes);

  /// Returns the shared record buffer, grown to at least `size` bytes.
  static char* buffer(int size);

  /// Prints the number of lost bytes.
  static void showStats();

  static RecordLosses _losses;

  /// Returns how many bytes may be read from the start of a record. A record in a buffer of the caller is
  /// assumed to be complete: 0xFFFF, as its size has 16 bits.
  static std::size_t lengthOf(const char* record) {
    assert(record == _tmp || !isInBuffer(record));  // not from the middle of a record
    return record == _tmp ? static_cast<std::size_t>(_tmpLen) : std::size_t{0xFFFF};
  }

 private:
  struct RecordFunction {
    int type = 0;
    PerfRecordFunction function = nullptr;
    const char* name = nullptr;
  };

  static bool isInBuffer(const char* byte) {
    return !std::less<>()(byte, _tmp) && std::less<>()(byte, _tmp + _tmpLen);
  }

  static std::array<RecordFunction, 16> perfRecordFunctions;
  static std::uint32_t _lostBytes;  ///< bytes skipped by the scan, a multiple of 4
  static char* _tmp;
  static int _tmpLen;
};

/// Registers a creation function during static initialisation.
class PerfAddFactory {
 public:
  PerfAddFactory(int type, const char* name, PerfRecordFunction function) {
    PerfFactory::addFunction(type, name, function);
  }
};

/// Prints the bytes in hexadecimal, sixteen per line.
void dump(const char* buffer, int size);
