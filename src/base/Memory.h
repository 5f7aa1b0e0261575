#pragma once

#include <cstddef>
#include <deque>
#include <memory>

/// Pool of large memory blocks, for data that grows with the recording. The block returned last is the next
/// one to be reused: the document grows into the blocks that its samples release.
class BlockPool {
 public:
  static constexpr std::size_t kBlockSize = std::size_t{64} * 1024;

  struct Return {
    void operator()(char* block) const noexcept;
  };
  /// Returns itself to the pool when destroyed.
  using Block = std::unique_ptr<char[], Return>;

  /// Returns an uninitialised block of kBlockSize bytes.
  static Block take();

 private:
  struct Returned {
    Returned* next;
  };

  static void makeChunk();

  static inline Returned* _returned = nullptr;  ///< list of the returned blocks, the latest first
  static inline char* _chunk = nullptr;         ///< unused tail of the last chunk from the system
  static inline std::size_t _left = 0;          ///< size of that tail
};

/// Bump allocator over BlockPool blocks, for many small long-lived objects.
class Arena {
 public:
  Arena() = default;
  Arena(const Arena&) = delete;
  Arena& operator=(const Arena&) = delete;

  /// Allocates `size` bytes, BlockPool::kBlockSize at most. The alignment is a power of two.
  void* allocate(std::size_t size, std::size_t alignment = 8);

  /// Frees a piece of this arena; `size` is that of its allocation. Only the memory of the latest piece is
  /// reused; that of any other stays unused.
  void release(void* piece, std::size_t size);

  /// Returns all blocks to the pool that were filled before the one that holds the piece, which must be a
  /// piece of this arena.
  void releaseBlocksBefore(const void* piece);

  /// Returns all blocks to the pool.
  void clear();

 private:
  char* take(std::size_t size);
  void startBlock();

  std::deque<BlockPool::Block> _blocks;  ///< in the order in which they were filled
  char* _free = nullptr;                 ///< unused tail of the last block
  std::size_t _left = 0;                 ///< size of that tail
};

/// Slots of one size for small objects that come and go, of which malloc takes at least 32 bytes for each.
/// All memory goes back to the BlockPool with the last slot.
class SlotPool {
 public:
  /// The size is at least that of a pointer; slots are aligned to 8 bytes.
  explicit SlotPool(std::size_t slotSize) : _slotSize(slotSize) {}

  /// Returns an uninitialised slot.
  void* take();
  void giveBack(void* slot) noexcept;

 private:
  struct Free {
    Free* next;
  };

  std::size_t _slotSize;
  std::size_t _taken = 0;
  Free* _free = nullptr;  ///< list of the slots given back, the latest first
  Arena _slots;
};
