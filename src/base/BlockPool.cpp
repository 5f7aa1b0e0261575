#include "base/BlockPool.h"

#include <sys/mman.h>

#include <cstdlib>
#include <new>
#include <utility>

namespace {

/// Of a large page, as most systems have them.
constexpr std::size_t kLargePage = 2 * 1024 * 1024;
constexpr std::size_t kChunkSize = 4 * kLargePage;

/// Under a sanitizer each block is a piece of memory of its own, so that the sanitizer sees where it ends.
#ifdef ZELCONV_SANITIZED
constexpr bool kPools = false;
#else
constexpr bool kPools = true;
#endif

}  // namespace

BlockPool::Block BlockPool::take() {
  if (!kPools) return Block(new char[kBlockSize]);
  if (_returned != nullptr) {
    Returned* const block = _returned;
    _returned = block->next;
    return Block(reinterpret_cast<char*>(block));
  }
  if (_left == 0) makeChunk();
  _left -= kBlockSize;
  return Block(std::exchange(_chunk, _chunk + kBlockSize));
}

void BlockPool::Return::operator()(char* block) const noexcept {
  if (!kPools) {
    delete[] block;
  } else {
    _returned = new (block) Returned{_returned};
  }
}

/// Small recordings make do with one chunk of usual pages. From then on large ones are asked for, as each
/// page costs more time to get than to fill.
void BlockPool::makeChunk() {
  const bool isFirst = _chunk == nullptr;
  _left = isFirst ? kLargePage : kChunkSize;
  _chunk = static_cast<char*>(std::aligned_alloc(isFirst ? kBlockSize : kLargePage, _left));
  if (_chunk == nullptr) throw std::bad_alloc();
  if (!isFirst) madvise(_chunk, _left, MADV_HUGEPAGE);
}
