#pragma once

#include <cassert>
#include <cstddef>
#include <cstring>

#include "run/Settings.h"

/// Unbuffered reader over a file descriptor, and the base of PerfBlockReader, which a run uses.
class PerfReader {
 public:
  PerfReader() = default;
  virtual ~PerfReader();
  PerfReader(const PerfReader&) = delete;
  PerfReader& operator=(const PerfReader&) = delete;

  /// Returns 0, or -1 for a null name or a file that cannot be opened.
  virtual int open(const char* name);

  /// Calls read() of the operating system once, without a retry. Returns the number of bytes, 0 at the end of
  /// the file, or -1.
  virtual int read(char* buffer, int size);

  /// The same for 1 to 2048 bytes, without a call for those that are buffered.
  int get(char* buffer, int size) {
    assert(size > 0 && size <= kLargestExpectedRead);
    const auto count = static_cast<std::size_t>(size);
    if (static_cast<std::size_t>(_limit - _next) < count || gVerbosity > 1) return read(buffer, size);
    std::memcpy(buffer, _next, count);
    _next += count;
    return _lastRead = size;
  }

  virtual void close();

  /// Returns whether the latest read returned any bytes; false before the first.
  virtual bool status() const;

  /// Seeks to an offset from the start of the file. The offset is signed: one of 2 GiB or more fails, and
  /// reading continues at the current position.
  virtual void seek(int offset);

  /// Returns the offset in the file of the next byte that read returns.
  virtual unsigned long long offset() const { return _offset; }

 protected:
  static constexpr int kLargestExpectedRead = 2048;

  /// Prints the verbose line for a read, and the warning for an implausible size.
  static void announceRead(int size);

  int _fd = 0;                     ///< 0 before open, and taken as "not open"
  int _lastRead = 0;               ///< result of the latest read that reached the operating system
  const char* _next = nullptr;     ///< the bytes that the next reads return, if any are buffered
  const char* _limit = nullptr;    ///< their end
  unsigned long long _offset = 0;  ///< offset in the file of the operating system's next read
};
