#include "base/Memory.h"

#include <sys/mman.h>

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <new>
#include <utility>

// Tells the address sanitizer which bytes are free: it cannot see the pieces of a block by itself.
#ifdef ZELCONV_SANITIZED
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(start, size) static_cast<void>(0)
#define ASAN_UNPOISON_MEMORY_REGION(start, size) static_cast<void>(0)
#endif

namespace {

/// Transparent huge page size on most systems.
constexpr std::size_t kLargePage = std::size_t{2} * 1024 * 1024;
constexpr std::size_t kChunkSize = 4 * kLargePage;

/// Between the blocks of a chunk, so that a sanitizer sees a write beyond the end of one.
#ifdef ZELCONV_SANITIZED
constexpr std::size_t kGap = 64;
#else
constexpr std::size_t kGap = 0;
#endif
constexpr std::size_t kStride = BlockPool::kBlockSize + kGap;

bool holds(const char* block, const char* byte) {
  return !std::less<>()(byte, block) && std::less<>()(byte, block + BlockPool::kBlockSize);
}

}  // namespace

BlockPool::Block BlockPool::take() {
  if (_returned == nullptr) {
    if (_left < kStride) makeChunk();
    _left -= kStride;
    char* const block = std::exchange(_chunk, _chunk + kStride);
    ASAN_UNPOISON_MEMORY_REGION(block, kBlockSize);
    return Block(block);
  }
  auto* const block = reinterpret_cast<char*>(_returned);
  ASAN_UNPOISON_MEMORY_REGION(block, kBlockSize);
  _returned = _returned->next;
  return Block(block);
}

void BlockPool::Return::operator()(char* block) const noexcept {
  ASAN_UNPOISON_MEMORY_REGION(block, sizeof(Returned));
  _returned = new (block) Returned{_returned};
  ASAN_POISON_MEMORY_REGION(block, kBlockSize);
}

/// One chunk of normal pages is enough for small recordings. Later chunks use huge pages, as getting a page
/// from the system takes longer than filling it.
void BlockPool::makeChunk() {
  const bool isFirst = _chunk == nullptr;
  const std::size_t size = isFirst ? kLargePage : kChunkSize;
  auto* const chunk = static_cast<char*>(std::aligned_alloc(isFirst ? kBlockSize : kLargePage, size));
  if (chunk == nullptr) throw std::bad_alloc();
  if (!isFirst) madvise(chunk, size, MADV_HUGEPAGE);
  ASAN_POISON_MEMORY_REGION(chunk, size);
  _chunk = chunk;
  _left = size;
}

void* Arena::allocate(std::size_t size, std::size_t alignment) {
  assert(size <= BlockPool::kBlockSize);
  const std::size_t padding = (0 - reinterpret_cast<std::uintptr_t>(_free)) & (alignment - 1);
  if (size + padding > _left) {
    startBlock();
  } else {
    take(padding);
  }
  ASAN_UNPOISON_MEMORY_REGION(_free, size);
  return take(size);
}

char* Arena::take(std::size_t size) {
  _left -= size;
  return std::exchange(_free, _free + size);
}

void Arena::startBlock() {
  _blocks.push_back(BlockPool::take());
  _free = _blocks.back().get();
  _left = BlockPool::kBlockSize;
  ASAN_POISON_MEMORY_REGION(_free, _left);
}

void Arena::release(void* piece, std::size_t size) {
  ASAN_POISON_MEMORY_REGION(piece, size);
  if (static_cast<char*>(piece) + size != _free) return;
  _free -= size;
  _left += size;
}

void Arena::releaseBlocksBefore(const void* piece) {
  const auto holdsPiece = [piece](const BlockPool::Block& block) {
    return holds(block.get(), static_cast<const char*>(piece));
  };
  // The usual case: samples are released one after the other.
  if (!_blocks.empty() && holdsPiece(_blocks.front())) return;
  const auto home = std::find_if(_blocks.begin(), _blocks.end(), holdsPiece);
  assert(home != _blocks.end());
  if (home != _blocks.end()) _blocks.erase(_blocks.begin(), home);
}

void Arena::clear() {
  _blocks.clear();
  _free = nullptr;
  _left = 0;
}

void* SlotPool::take() {
  void* slot = _free;
  if (slot == nullptr) {
    slot = _slots.allocate(_slotSize);
  } else {
    ASAN_UNPOISON_MEMORY_REGION(slot, _slotSize);
    _free = _free->next;
  }
  ++_taken;
  return slot;
}

void SlotPool::giveBack(void* slot) noexcept {
  if (--_taken == 0) {
    _free = nullptr;
    _slots.clear();
    return;
  }
  _free = new (slot) Free{_free};
  ASAN_POISON_MEMORY_REGION(slot, _slotSize);
}
