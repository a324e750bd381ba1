#include <algorithm>
#include <cstring>
#include <vector>

#include "base/dib.h"
#include "test_support.h"

TEST(Dib, ColourTableAndStrideFollowTheBitCount) {
  // bits, colours, and the stride of rows 1, 3, 5, 7, 9 and 33 pixels wide: rows are padded to four bytes.
  const struct {
    uint16_t bits;
    uint32_t colours, strides[6];
  } cases[] = {{1, 2, {4, 4, 4, 4, 4, 8}}, {4, 16, {4, 4, 4, 4, 8, 20}}, {8, 256, {4, 4, 8, 8, 12, 36}},
               {16, 0, {4, 8, 12, 16, 20, 68}}, {24, 0, {4, 12, 16, 24, 28, 100}}};
  const int widths[] = {1, 3, 5, 7, 9, 33};
  for (const auto& c : cases) {
    EXPECT_EQ(DibColourTableEntries(c.bits), c.colours) << c.bits;
    for (int i = 0; i < 6; ++i) EXPECT_EQ(DibRowStride(widths[i], c.bits), c.strides[i]) << c.bits << " " << widths[i];
  }
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

// Packed DIBs as other programs put them on the clipboard: short colour
// tables and larger headers are taken apart into our layout.
TEST_F(QuernalTest, PackedDibsFromOtherProgramsComeInOurLayout) {
  auto packed = [](uint32_t headerSize, uint16_t bits, uint32_t used, uint32_t compression, size_t cut) {
    BitmapInfoHeader h{headerSize, 3, -2, 1, bits, compression, 0, 0, 0, used, 0};
    std::vector<uint8_t> bytes(std::max<size_t>(headerSize, sizeof h));
    std::memcpy(bytes.data(), &h, sizeof h);
    const uint32_t colours = bits <= 8 ? (used ? used : 1u << bits) : 0;
    for (uint32_t i = 0; i < colours; ++i) bytes.insert(bytes.end(), {uint8_t(i), uint8_t(i + 1), uint8_t(i + 2), 0});
    const size_t rows = 2 * DibRowStride(3, bits);
    for (size_t i = 0; i < rows; ++i) bytes.push_back(uint8_t(0xA0 + i));
    bytes.resize(bytes.size() - cut);
    return bytes;
  };
  const struct {
    std::vector<uint8_t> bytes;
    bool taken;
  } cases[] = {{packed(40, 8, 2, 0, 0), true},  {packed(124, 24, 0, 0, 0), true}, {packed(40, 4, 0, 0, 0), true},
               {packed(40, 8, 2, 0, 1), false}, {packed(40, 24, 0, 1, 0), false}, {packed(12, 24, 0, 0, 0), false}};
  for (const auto& c : cases) {
    BlockHandle dib = DibFromPacked(c.bytes.data(), c.bytes.size());
    EXPECT_EQ(dib != 0, c.taken);
    if (!dib) continue;
    EXPECT_TRUE(DibBlockIsValid(dib));
    {
      BlockLock lock(dib);
      EXPECT_EQ(lock.as<BitmapInfoHeader>()->biSize, 40u);
      EXPECT_EQ(DibBits(lock.bytes())[0], 0xA0) << "the rows follow the table the file had";
      if (lock.as<BitmapInfoHeader>()->biBitCount <= 8) {
        EXPECT_EQ(DibColourTable(lock.bytes())[1].rgbGreen, 2);
      }
    }
    GlobalBlockFree(dib);
  }
}
