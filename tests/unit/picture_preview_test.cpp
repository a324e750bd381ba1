// What the picture-open dialog shows beside a picture: the facts about it
// and the scale that fits it; which pictures earn the palette warning.
#include "base/dib.h"
#include "pictures/picture_kind.h"
#include "pictures/picture_preview.h"
#include "test_support.h"

TEST(PicturePreview, TheFactsAndTheFit) {
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
