#pragma once

#include <cstddef>
#include <deque>

#include "run/BlockPool.h"

/// Storage for what is kept of the records: one piece behind the other in large blocks, aligned to 8 bytes.
class RecordArena {
 public:
  /// A piece of so many bytes, which fit a block.
  static void* allocate(std::size_t size);

  /// Takes a piece back, to give it out again if it was the last one allocated.
  static void release(void* piece, std::size_t size);

  /// Takes back all blocks that were filled before the one in which the piece lies.
  static void releaseBlocksBefore(const void* piece);

 private:
  static inline std::deque<BlockPool::Block> _blocks;  ///< in the order in which they were filled
  static inline char* _free = nullptr;                 ///< the rest of the block in use
  static inline std::size_t _left = 0;
};
