#include <cstring>

#include "base/global_block.h"
#include "test_support.h"

TEST(GlobalBlock, NewBlocksAreZeroAndKeepTheirBytesWhenResized) {
  BlockHandle h = GlobalBlockAlloc(16);
  ASSERT_NE(h, 0u);
  EXPECT_EQ(GlobalBlockSize(h), 16u);
  {
    BlockLock lock(h);
    for (int i = 0; i < 16; ++i) EXPECT_EQ(lock.bytes()[i], 0);
    std::memcpy(lock.bytes(), "abcdefghijklmnop", 16);
  }
  // Growing a block bit by bit, as the event reader and the picture reader do.
  for (uint32_t size = 17; size < 100000; size += 777) ASSERT_TRUE(GlobalBlockReAlloc(h, size));
  {
    BlockLock lock(h);
    EXPECT_EQ(std::memcmp(lock.bytes(), "abcdefghijklmnop", 16), 0);
    for (uint32_t i = 16; i < GlobalBlockSize(h); ++i) ASSERT_EQ(lock.bytes()[i], 0) << i;
  }
  // Shrinking and growing again must not bring old bytes back.
  ASSERT_TRUE(GlobalBlockReAlloc(h, 4));
  ASSERT_TRUE(GlobalBlockReAlloc(h, 8));
  {
    BlockLock lock(h);
    EXPECT_EQ(std::memcmp(lock.bytes(), "abcd\0\0\0\0", 8), 0);
  }
  EXPECT_TRUE(GlobalBlockFree(h));
}

TEST(GlobalBlock, StaleAndUnknownHandlesAreRefused) {
  BlockHandle h = GlobalBlockAlloc(8);
  const uint64_t serial = GlobalBlockSerial(h);
  ASSERT_TRUE(GlobalBlockFree(h));
  EXPECT_EQ(GlobalBlockSerial(h), 0u);
  // The slot is reused, but the old handle must not reach the new block,
  // and nothing kept about the old block may pass for the new one.
  BlockHandle again = GlobalBlockAlloc(8);
  EXPECT_NE(again, h);
  EXPECT_GT(GlobalBlockSerial(again), serial);
  const uint64_t before = GlobalBlockSerial(again);
  ASSERT_TRUE(GlobalBlockReAlloc(again, 8));
  EXPECT_GT(GlobalBlockSerial(again), before);
  EXPECT_EQ(GlobalBlockLock(h), nullptr);
  EXPECT_EQ(GlobalBlockSize(h), 0u);
  EXPECT_FALSE(GlobalBlockFree(h));
  EXPECT_FALSE(GlobalBlockReAlloc(h, 4));
  EXPECT_EQ(GlobalBlockLock(0), nullptr);
  EXPECT_EQ(GlobalBlockLock(0x7FFFFu), nullptr);
  EXPECT_TRUE(GlobalBlockFree(again));
}

TEST(GlobalBlock, LocksAreCountedAndDuplicatesOwnTheirBytes) {
  BlockHandle h = GlobalBlockAlloc(4);
  EXPECT_FALSE(GlobalBlockUnlock(h));
  {
    BlockLock a(h), b(h);
    EXPECT_EQ(GlobalBlockLockCount(h), 2u);
    std::memcpy(a.bytes(), "wxyz", 4);
  }
  EXPECT_EQ(GlobalBlockLockCount(h), 0u);

  BlockHandle copy = DuplicateBlock(h);
  ASSERT_NE(copy, 0u);
  ASSERT_NE(copy, h);
  EXPECT_EQ(BlockBytes(copy), BlockBytes(h));
  BlockLock(copy).bytes()[0] = 'W';
  EXPECT_EQ(BlockBytes(h)[0], 'w');
  EXPECT_EQ(GlobalBlockLockCount(h), 0u);

  // Nothing to duplicate in an empty or dead block.
  BlockHandle empty = GlobalBlockAlloc(0);
  EXPECT_EQ(DuplicateBlock(empty), 0u);
  EXPECT_EQ(DuplicateBlock(0), 0u);
  for (BlockHandle b : {h, copy, empty}) EXPECT_TRUE(GlobalBlockFree(b));
}
