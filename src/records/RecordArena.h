#pragma once

#include <cstddef>

/// Storage for what is kept of the records until the process ends: one piece behind the other in large
/// blocks, aligned to 8 bytes. What is given back in the reverse order of its allocation can be had again.
class RecordArena {
 public:
  static void* allocate(std::size_t size);
  static void release(void* piece, std::size_t size);

 private:
  static inline char* _free = nullptr;  ///< the rest of the block in use
  static inline std::size_t _left = 0;
};
