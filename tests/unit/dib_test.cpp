#include <cstring>

#include "base/dib.h"
#include "test_support.h"

TEST(Dib, ColourTableAndStrideFollowTheBitCount) {
  EXPECT_EQ(DibColourTableEntries(1), 2u);
  EXPECT_EQ(DibColourTableEntries(4), 16u);
  EXPECT_EQ(DibColourTableEntries(8), 256u);
  EXPECT_EQ(DibColourTableEntries(16), 0u);
  EXPECT_EQ(DibColourTableEntries(24), 0u);
  // Rows are padded to four bytes.
  EXPECT_EQ(DibRowStride(1, 1), 4u);
  EXPECT_EQ(DibRowStride(33, 1), 8u);
  EXPECT_EQ(DibRowStride(3, 24), 12u);
  EXPECT_EQ(DibRowStride(5, 24), 16u);
  EXPECT_EQ(DibRowStride(7, 4), 4u);
  EXPECT_EQ(DibRowStride(9, 4), 8u);
}

TEST(Dib, CreatedDibsAreValidAndDamagedOnesAreNot) {
  BlockHandle pal = DibCreate(10, 3, 8);
  ASSERT_NE(pal, 0u);
  EXPECT_EQ(GlobalBlockSize(pal), 40u + 256 * 4 + 12 * 3);
  EXPECT_TRUE(DibBlockIsValid(pal));

  BlockHandle rgb = DibCreate(3, -2, 24);  // top-down
  EXPECT_EQ(GlobalBlockSize(rgb), 40u + 12 * 2);
  EXPECT_TRUE(DibBlockIsValid(rgb));
  // One byte short of the last row.
  ASSERT_TRUE(GlobalBlockReAlloc(rgb, GlobalBlockSize(rgb) - 1));
  EXPECT_FALSE(DibBlockIsValid(rgb));

  // The colours-used field never changes where the pixels start.
  BlockLock(pal).as<BitmapInfoHeader>()->biClrUsed = 3;
  {
    BlockLock lock(pal);
    EXPECT_EQ(DibBits(lock.bytes()) - lock.bytes(), 40 + 256 * 4);
  }
  BlockLock(pal).as<BitmapInfoHeader>()->biCompression = 1;  // run-length coded: not ours
  EXPECT_FALSE(DibBlockIsValid(pal));

  EXPECT_EQ(DibCreate(0, 5, 24), 0u);
  EXPECT_EQ(DibCreate(5, 5, 7), 0u);
  EXPECT_EQ(DibCreate(100000, 100000, 32), 0u) << "larger than a block can be";
  for (BlockHandle b : {pal, rgb}) GlobalBlockFree(b);
}
