#pragma once

#include <cstddef>
#include <deque>

#include "base/BlockPool.h"

/// Storage for many small things that stay: one piece behind the other in blocks of the pool, aligned to 8
/// bytes.
class Arena {
 public:
  /// A piece of so many bytes, at most a block's.
  void* allocate(std::size_t size);

  /// Takes a piece back, to give it out again if it was the last one allocated.
  void release(void* piece, std::size_t size);

  /// Takes back all blocks that were filled before the one in which the piece lies.
  void releaseBlocksBefore(const void* piece);

 private:
  std::deque<BlockPool::Block> _blocks;  ///< in the order in which they were filled
  char* _free = nullptr;                 ///< the rest of the last one
  std::size_t _left = 0;
};
