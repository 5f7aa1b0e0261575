#pragma once

#include <cstddef>
#include <memory>

#include "records/PerfReader.h"

/// Reader that fetches large blocks of a regular file and serves reads from them, with the same results as
/// one read() of the operating system for each. Pipes and other special files are read without a block, as
/// the result depends on the sizes asked for.
class PerfBlockReader : public PerfReader {
 public:
  int open(const char* name) override;
  int read(char* buffer, int size) override;
  void seek(int offset) override;
  unsigned long long offset() const override { return _offset - available(); }

 private:
  std::size_t available() const { return static_cast<std::size_t>(_limit - _next); }
  void holdNothing() { _next = _limit = _block.get(); }
  bool fetch(std::size_t size);

  std::unique_ptr<char[]> _block;  ///< null for a file that is read directly
};
