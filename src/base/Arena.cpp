#include "base/Arena.h"

#include <functional>

namespace {

constexpr std::size_t kAlignment = 8;

std::size_t aligned(std::size_t size) {
  return (size + kAlignment - 1) & ~(kAlignment - 1);
}

}  // namespace

void* Arena::allocate(std::size_t size) {
  size = aligned(size);
  if (size > _left) {
    _blocks.push_back(BlockPool::take());
    _free = _blocks.back().get();
    _left = BlockPool::kBlockSize;
  }
  char* piece = _free;
  _free += size;
  _left -= size;
  return piece;
}

void Arena::release(void* piece, std::size_t size) {
  size = aligned(size);
  if (static_cast<char*>(piece) + size != _free) return;
  _free -= size;
  _left += size;
}

void Arena::releaseBlocksBefore(const void* piece) {
  const auto* const bytes = static_cast<const char*>(piece);
  const auto holdsPiece = [bytes](const char* block) {
    return !std::less<>()(bytes, block) && std::less<>()(bytes, block + BlockPool::kBlockSize);
  };
  while (!holdsPiece(_blocks.front().get())) _blocks.pop_front();
}
