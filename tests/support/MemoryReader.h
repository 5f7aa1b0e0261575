#pragma once

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include "records/PerfReader.h"

/// Reads from memory instead of a file.
class MemoryReader : public PerfReader {
 public:
  explicit MemoryReader(std::string bytes) : _bytes(std::move(bytes)) { _lastRead = 1; }

  int read(char* buffer, int size) override {
    const std::size_t count = std::min(static_cast<std::size_t>(size), _bytes.size() - _place);
    std::memcpy(buffer, _bytes.data() + _place, count);
    _place += count;
    return _lastRead = static_cast<int>(count);
  }

  void seek(int offset) override {
    if (offset >= 0) _place = std::min(static_cast<std::size_t>(offset), _bytes.size());
  }

 private:
  std::string _bytes;
  std::size_t _place = 0;
};
