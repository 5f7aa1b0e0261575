#include "base/Memory.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

namespace {

constexpr std::size_t kBlockSize = BlockPool::kBlockSize;

TEST(BlockPool, ReusesTheBlockReturnedLast) {
  std::vector<BlockPool::Block> blocks;  // of more than one chunk
  for (int i = 0; i < 300; ++i) {
    blocks.push_back(BlockPool::take());
    std::memset(blocks.back().get(), i, kBlockSize);
  }
  for (int i = 0; i < 300; ++i) {
    const std::vector<char> expected(kBlockSize, static_cast<char>(i));
    ASSERT_EQ(std::memcmp(blocks[static_cast<std::size_t>(i)].get(), expected.data(), kBlockSize), 0) << i;
  }
  const char* const first = blocks[7].get();
  const char* const second = blocks[200].get();
  blocks[7].reset();
  blocks[200].reset();
  EXPECT_EQ(BlockPool::take().release(), second);
  EXPECT_EQ(BlockPool::take().release(), first);
}

TEST(Arena, PiecesAreDisjointAndAligned) {
  Arena arena;
  std::vector<char*> pieces;
  const auto sizeOf = [](std::size_t index) { return 1 + index * 37 % 200; };
  for (std::size_t i = 0; i < 3000; ++i) {
    const std::size_t alignment = i % 3 == 0 ? 1 : 8;
    pieces.push_back(static_cast<char*>(arena.allocate(sizeOf(i), alignment)));
    ASSERT_EQ(reinterpret_cast<std::uintptr_t>(pieces[i]) % alignment, 0U) << i;
    std::memset(pieces[i], static_cast<int>(i), sizeOf(i));
  }
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    EXPECT_EQ(pieces[i][0], static_cast<char>(i)) << i;
    EXPECT_EQ(pieces[i][sizeOf(i) - 1], static_cast<char>(i)) << i;
  }
  char* const whole = static_cast<char*>(arena.allocate(kBlockSize));
  std::memset(whole, 1, kBlockSize);
}

TEST(Arena, ReusesOnlyTheLatestPiece) {
  Arena arena;
  void* const first = arena.allocate(24);
  void* const second = arena.allocate(40);
  arena.release(first, 24);
  EXPECT_NE(arena.allocate(24), first);
  void* const latest = arena.allocate(16);
  arena.release(latest, 16);
  EXPECT_EQ(arena.allocate(8), latest);
  EXPECT_NE(latest, second);
}

TEST(Arena, ReturnsBlocksOfEarlierPieces) {
  Arena arena;
  char* const first = static_cast<char*>(arena.allocate(kBlockSize));
  char* const second = static_cast<char*>(arena.allocate(kBlockSize / 2));
  char* const third = static_cast<char*>(arena.allocate(8));  // in the same block
  second[0] = 'a';
  int elsewhere = 0;
  EXPECT_DEBUG_DEATH(arena.releaseBlocksBefore(&elsewhere), "");  // no piece of this arena: nothing happens
  first[0] = 'b';
  arena.releaseBlocksBefore(third);
  EXPECT_EQ(second[0], 'a');
  EXPECT_EQ(BlockPool::take().release(), first);
}

TEST(SlotPool, HandsSlotsOutAgainAndBlocksBackWithTheLast) {
  SlotPool pool(24);
  std::vector<char*> slots;
  for (int i = 0; i < 10000; ++i) {
    slots.push_back(static_cast<char*>(pool.take()));
    std::memset(slots.back(), i, 24);
  }
  for (std::size_t i = 0; i < slots.size(); ++i) {
    ASSERT_EQ(slots[i][0], static_cast<char>(i)) << i;
    ASSERT_EQ(slots[i][23], static_cast<char>(i)) << i;
  }
  EXPECT_EQ(slots[1], slots[0] + 24);
  pool.giveBack(slots[5]);
  pool.giveBack(slots[17]);
  EXPECT_EQ(pool.take(), slots[17]);
  EXPECT_EQ(pool.take(), slots[5]);
  for (char* const slot : slots) pool.giveBack(slot);
  const char* const block = BlockPool::take().release();
  EXPECT_GE(slots[9999], block);
  EXPECT_LT(slots[9999], block + kBlockSize);
}

#ifdef ZELCONV_SANITIZED
// What a sanitizer must see although the memory stays the program's.
TEST(Arena, FreedAndForeignBytesArePoisoned) {
  Arena arena;
  char* const piece = static_cast<char*>(arena.allocate(16));
  EXPECT_DEATH(piece[16] = 1, "poison");
  arena.release(piece, 16);
  EXPECT_DEATH(piece[0] = 1, "poison");
  BlockPool::Block block = BlockPool::take();
  char* const bytes = block.get();
  EXPECT_DEATH(bytes[kBlockSize] = 1, "poison");
  block.reset();
  EXPECT_DEATH(bytes[100] = 1, "poison");
  SlotPool pool(16);
  char* const slot = static_cast<char*>(pool.take());
  static_cast<void>(pool.take());
  pool.giveBack(slot);
  EXPECT_DEATH(slot[0] = 1, "poison");
  EXPECT_DEATH(arena.allocate(kBlockSize + 1), "");
}
#endif

}  // namespace
