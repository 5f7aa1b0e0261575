#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "layout/OldRecords.h"

namespace zelkit {

/// Writes a recording in the layout that the engine reads, that of perf of kernel 3.4: header, attributes,
/// the table of trace-points, and the records.
class OldFile : public RecordTaker {
 public:
  using EventTable = std::vector<std::pair<std::uint16_t, std::string>>;

  /// Returns the bytes of a table; an entry has a number (u64) and a name of 64 bytes.
  static std::string tableBytes(const EventTable& events);

  /// Creates the file, which becomes `name` when it is complete. Throws std::runtime_error with "NAME:
  /// reason", as do the other operations.
  OldFile(const std::string& path, std::string name, const EventTable& events);
  ~OldFile() override;
  OldFile(const OldFile&) = delete;
  OldFile& operator=(const OldFile&) = delete;

  char* room(std::size_t size) override;
  void done(std::size_t size) override { _used += size; }

  /// Writes the buffered records, and the final sizes into the header.
  void finish();

 private:
  void flush();
  void write(const char* bytes, std::size_t size);
  [[noreturn]] void fail() const;

  std::string _name;
  int _fd;
  std::vector<char> _buffer;
  std::size_t _used = 0;
  std::uint64_t _written = 0;
  std::uint64_t _dataOffset = 0;
};

}  // namespace zelkit
