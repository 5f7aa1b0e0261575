#pragma once

#include <cstddef>
#include <memory>

/// Memory in large blocks, for what grows with the recording. A block that is given back is the next one to
/// be handed out: the document grows into what its samples leave.
class BlockPool {
 public:
  static constexpr std::size_t kBlockSize = 64 * 1024;

  struct Return {
    void operator()(char* block) const noexcept;
  };
  using Block = std::unique_ptr<char[], Return>;

  /// A block of that size with anything in it.
  static Block take();

 private:
  struct Returned {
    Returned* next;
  };

  static void makeChunk();

  static inline Returned* _returned = nullptr;  ///< the first of the blocks given back
  static inline char* _chunk = nullptr;         ///< the rest of what was had of the system
  static inline std::size_t _left = 0;
};
