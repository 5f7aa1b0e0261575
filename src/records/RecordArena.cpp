#include "records/RecordArena.h"

#include <algorithm>
#include <new>

namespace {

constexpr std::size_t kBlockSize = 1 << 20;
constexpr std::size_t kAlignment = 8;

std::size_t aligned(std::size_t size) {
  return (size + kAlignment - 1) & ~(kAlignment - 1);
}

}  // namespace

void* RecordArena::allocate(std::size_t size) {
  size = aligned(size);
  if (size > _left) {
    _left = std::max(size, kBlockSize);
    _free = static_cast<char*>(::operator new(_left));
  }
  char* piece = _free;
  _free += size;
  _left -= size;
  return piece;
}

void RecordArena::release(void* piece, std::size_t size) {
  size = aligned(size);
  if (static_cast<char*>(piece) + size != _free) return;
  _free -= size;
  _left += size;
}
