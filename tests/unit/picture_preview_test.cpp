// What the picture-open dialog shows: a picture resampled to its preview
// box, and the facts about it.
#include <cstring>

#include "base/dib.h"
#include "pictures/picture_kind.h"
#include "pictures/picture_preview.h"
#include "test_support.h"

namespace {

// Pixel (x, y), y counted from the top, of a bottom-up 24-bit Dib as 0xRRGGBB.
uint32_t Pixel(BlockHandle dib, int x, int y) {
  BlockLock lock(dib);
  const auto& h = *lock.as<BitmapInfoHeader>();
  const uint8_t* p = DibBits(lock.bytes()) + DibRowStride(h.biWidth, 24) * (h.biHeight - 1 - y) + 3 * x;
  return uint32_t(p[2]) << 16 | p[1] << 8 | p[0];
}

// A Dib whose rows are given top first, as palette indexes (bits <= 8) or
// 0xRRGGBB values (24 bits); `topDown` stores it with a negative height.
BlockHandle Picture(int bits, const std::vector<std::vector<uint32_t>>& rows, const std::vector<uint32_t>& palette = {},
                    bool topDown = false) {
  const int w = static_cast<int>(rows[0].size()), h = static_cast<int>(rows.size());
  BlockHandle dib = DibCreate(w, topDown ? -h : h, static_cast<uint16_t>(bits));
  BlockLock lock(dib);
  RgbQuad* table = DibColourTable(lock.bytes());
  for (size_t i = 0; i < palette.size(); ++i)
    table[i] = {uint8_t(palette[i]), uint8_t(palette[i] >> 8), uint8_t(palette[i] >> 16), 0};
  for (int y = 0; y < h; ++y) {
    uint8_t* row = DibBits(lock.bytes()) + DibRowStride(w, bits) * (topDown ? y : h - 1 - y);
    for (int x = 0; x < w; ++x) {
      const uint32_t v = rows[y][x];
      if (bits == 24) {
        row[3 * x] = uint8_t(v), row[3 * x + 1] = uint8_t(v >> 8), row[3 * x + 2] = uint8_t(v >> 16);
      } else {
        const int per = 8 / bits;
        row[x / per] |= uint8_t(v << (8 - bits * (x % per + 1)));
      }
    }
  }
  return dib;
}

}  // namespace

TEST_F(QuernalTest, PicturesShrinkByAreaAndGrowByRepeatingInTheirOwnColours) {
  // Shrunk to half: each pixel is the average of the four it covers.
  BlockHandle photo = Picture(24, {{0x000000, 0x0000FF, 0x102030, 0x102030}, {0xFF0000, 0x00FF00, 0x102030, 0x304050}});
  BlockHandle half = DibScaledByPercent(photo, 50);
  ASSERT_NE(half, 0u);
  EXPECT_EQ(Pixel(half, 0, 0), 0x404040u);
  EXPECT_EQ(Pixel(half, 1, 0), 0x182838u);
  // 3 x 1 into 2 x 1: the middle pixel counts half in each new one.
  BlockHandle three = Picture(24, {{0x000000, 0x0000FC, 0x00FC00}});
  BlockHandle two = DibResampled(three, 2, 1);
  EXPECT_EQ(Pixel(two, 0, 0), 0x000054u);
  EXPECT_EQ(Pixel(two, 1, 0), 0x00A854u);

  // A palette picture, stored top down, doubled: its own colours, repeated,
  // the top row still on top; 1-bit pictures too.
  BlockHandle palette = Picture(8, {{1, 2}, {2, 0}}, {0x112233, 0xFF8000, 0x0080FF}, true);
  BlockHandle twice = DibScaledByPercent(palette, 200);
  ASSERT_NE(twice, 0u);
  for (int y = 0; y < 4; ++y)
    for (int x = 0; x < 4; ++x)
      EXPECT_EQ(Pixel(twice, x, y), (y < 2 ? (x < 2 ? 0xFF8000u : 0x0080FFu) : (x < 2 ? 0x0080FFu : 0x112233u)))
          << x << "," << y;
  BlockHandle mono = Picture(1, {{1, 0, 1}}, {0x000000, 0xFFFFFF});
  BlockHandle monoWide = DibResampled(mono, 6, 1);
  EXPECT_EQ(Pixel(monoWide, 1, 0), 0xFFFFFFu);
  EXPECT_EQ(Pixel(monoWide, 2, 0), 0x000000u);

  EXPECT_EQ(DibResampled(photo, 0, 5), 0u);
  EXPECT_EQ(DibScaledByPercent(photo, 0), 0u);
  for (BlockHandle b : {photo, half, three, two, palette, twice, mono, monoWide}) GlobalBlockFree(b);
}

TEST(PicturePreview, TheFactsAndTheFit) {
  EXPECT_EQ(PictureFacts(640, 480, 24), "Width: 640\nDepth: 480\nColors: 16,777,216");
  EXPECT_EQ(PictureFacts(16, 8, 8), "Width: 16\nDepth: 8\nColors: 256");
  EXPECT_EQ(PictureFacts(3, 1, 1), "Width: 3\nDepth: 1\nColors: 2");
  EXPECT_EQ(WithThousands(999), "999");
  EXPECT_EQ(WithThousands(1000), "1,000");
  EXPECT_EQ(WithThousands(4294967296u), "4,294,967,296");
  // The smaller ratio; small pictures are enlarged to fit.
  EXPECT_EQ(FitPercent(136, 137, 4000, 3000), 3);
  EXPECT_EQ(FitPercent(136, 137, 40, 30), 340);
  EXPECT_EQ(FitPercent(136, 137, 0, 30), 0);
}

TEST_F(QuernalTest, PicturesAreClassifiedForThePaletteWarning) {
  BlockHandle grey = DibCreate(2, 2, 8), nearly = DibCreate(2, 2, 8), mono = DibCreate(2, 2, 1),
              four = DibCreate(2, 2, 4), photo = DibCreate(2, 2, 24);
  for (BlockHandle b : {grey, nearly}) {
    BlockLock lock(b);
    RgbQuad* table = DibColourTable(lock.bytes());
    for (int i = 0; i < 256; ++i) table[i] = {uint8_t(i), uint8_t(i), uint8_t(i), 0};
  }
  {
    BlockLock lock(nearly);
    DibColourTable(lock.bytes())[200].rgbRed = 201;
  }
  const struct {
    BlockHandle dib;
    PictureKind kind;
    bool warned;
  } cases[] = {{grey, PictureKind::GreyScale, false}, {nearly, PictureKind::Palette, true},
               {mono, PictureKind::Monochrome, true},  {four, PictureKind::Palette, true},
               {photo, PictureKind::TrueColour, false}, {0, PictureKind::Palette, true}};
  for (const auto& c : cases) {
    EXPECT_EQ(ClassifyPicture(c.dib), c.kind);
    EXPECT_EQ(WantsPaletteWarning(ClassifyPicture(c.dib)), c.warned);
  }
  for (BlockHandle b : {grey, nearly, mono, four, photo}) GlobalBlockFree(b);
}
