#include <climits>
#include <vector>

#include "base/dib.h"
#include "render/ops_canvas.h"
#include "render/primitives.h"
#include "ops_parse.h"
#include "test_support.h"

TEST(Primitives, MixAndBlendWorkPerChannel) {
  EXPECT_EQ(Mix(0xE0E0E0, 0x000000), 0x707070u);
  EXPECT_EQ(Mix(0x0000FF, 0xFF0000), 0x7F007Fu) << "no carry between channels";
  EXPECT_EQ(Mix(0xFFFFFF, 0xFFFFFF), 0xFFFFFFu);
  EXPECT_EQ(BlendColour(0x123456, 0xABCDEF, 255), 0x123456u);
  EXPECT_EQ(BlendColour(0x123456, 0xABCDEF, 0), 0xABCDEFu);
  EXPECT_EQ(BlendColour(0x0000FF, 0x00FF00, 128), RGBColour(128, 127, 0));
}

TEST(Primitives, SoftShadowRingsShrinkTowardTheShadowColour) {
  OpsCanvas none;
  DrawSoftShadow(none, 0, 0, 19, 50, 0x000000, 0xFFFFFF, 5);  // n = 0
  EXPECT_EQ(none.ops(), "");

  OpsCanvas one;
  DrawSoftShadow(one, 100, 100, 120, 150, 0x000000, 0xFFFFFF, 5);  // n = 1: one ring in the background colour
  EXPECT_EQ(one.ops(), "roundrect 0 0 21 51 1 1 pen=none brush=#FFFFFF\n");

  OpsCanvas four;
  DrawSoftShadow(four, 0, 0, 40, 20, 0x000000, 0xFFFFFF, 10);
  auto rings = ParseOps(four.ops());
  ASSERT_EQ(rings.size(), 4u);
  EXPECT_EQ(rings[0].r, (Rect{2, 2, 44, 24}));
  EXPECT_EQ(rings[3].r, (Rect{5, 5, 41, 21}));
  EXPECT_EQ(rings[3].ellipse, 4);
  EXPECT_EQ(rings[1].brush, "#C0C0C0");  // t = 63: 255 * 192 / 255
  EXPECT_EQ(rings[3].brush, "#404040");  // t = 191

  // A damaged record's softness: one ring for each weight of 0 to 254.
  OpsCanvas huge;
  DrawSoftShadow(huge, 0, 0, 1000, 500, 0x000000, 0xFFFFFF, INT32_MAX);
  EXPECT_EQ(ParseOps(huge.ops()).size(), 255u);
}

TEST(Primitives, SoftShadowRingsThatCannotShowInTheClipAreSkipped) {
  // Rings {2,2,44,24} {3,3,43,23} {4,4,42,22} {5,5,41,21} with 4 x 4 corners.
  // Without a pen a ring fills a pixel short of its right and bottom edges,
  // so it covers only what lies inside those and clear of its corners.
  const struct {
    Rect clip;
    std::vector<int> lefts;  // of the rings drawn
  } cases[] = {
      {{20, 10, 22, 12}, {5}},           // deep inside: the last ring covers it
      {{100, 100, 110, 110}, {}},        // far outside: none
      {{2, 2, 3, 3}, {2}},               // the first ring's rounded corner: it alone reaches there
      {{10, 22, 30, 23}, {2, 3}},        // the first ring covers the row, the second reaches it
      {{10, 23, 30, 24}, {2}},           // the first ring's bottom edge, which it leaves unfilled
      {{0, 0, 50, 30}, {2, 3, 4, 5}},    // all of it
      {{42, 12, 43, 13}, {2, 3}},        // the second ring's unfilled right column
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(::testing::PrintToString(std::vector<int>{c.clip.left, c.clip.top, c.clip.right, c.clip.bottom}));
    OpsCanvas canvas;
    canvas.Clip(c.clip);
    DrawSoftShadow(canvas, 0, 0, 40, 20, 0x000000, 0xFFFFFF, 10);
    std::vector<int> lefts;
    for (const Op& op : OfKind(ParseOps(canvas.ops()), "roundrect")) lefts.push_back(op.r.left);
    EXPECT_EQ(lefts, c.lefts);
  }
}

TEST(Primitives, PaletteTripletsComeFromTheColourTable) {
  BlockHandle pal = DibCreate(4, 4, 4);
  {
    BlockLock lock(pal);
    RgbQuad* table = DibColourTable(lock.bytes());
    table[0] = {10, 20, 30, 0};
    table[15] = {1, 2, 3, 0};
  }
  uint8_t triplets[768];
  std::fill(triplets, triplets + 768, 0xEE);
  EXPECT_EQ(DibPaletteToTriplets(BlockLock(pal).as<BitmapInfoHeader>(), triplets), 16);
  EXPECT_EQ(triplets[0], 30);
  EXPECT_EQ(triplets[2], 10);
  EXPECT_EQ(triplets[45], 3);
  EXPECT_EQ(triplets[47], 1);
  EXPECT_EQ(triplets[48], 0) << "the rest is cleared";
  BlockHandle rgb = DibCreate(4, 4, 24);
  EXPECT_EQ(DibPaletteToTriplets(BlockLock(rgb).as<BitmapInfoHeader>(), triplets), 0);
  EXPECT_EQ(triplets[0], 0);
  GlobalBlockFree(pal);
  GlobalBlockFree(rgb);
}

TEST(OpsCanvas, MeasuresTextByTheFixedRule) {
  OpsCanvas c;
  c.SetFont({10, 400, 0, "ARIAL"});
  Rect r{0, 0, 100, 0};
  // Characters 5 wide: "aaaa bbbb cccc" is 70 wide, so two lines fit 20 characters each.
  EXPECT_EQ(c.DrawText("aaaa bbbb cccc dddd eeee", &r, kDtWordBreak | kDtCalcRect), 20);
  EXPECT_EQ(r, (Rect{0, 0, 100, 20}));
  r = {0, 0, 100, 0};
  EXPECT_EQ(c.DrawText("one\r\ntwo\nthree", &r, kDtCalcRect), 30);
  r = {10, 10, 20, 20};
  EXPECT_EQ(c.DrawText("single line", &r, kDtSingleLine | kDtCalcRect), 10);
  EXPECT_EQ(r, (Rect{10, 10, 65, 20}));
  r = {0, 0, 12, 0};
  EXPECT_EQ(c.DrawText("unbreakable word", &r, kDtWordBreak | kDtCalcRect), 20);
  EXPECT_EQ(r.right, 55) << "a word wider than the box widens it";
  EXPECT_EQ(c.ops(), "") << "measuring draws nothing";

  c.SetOrigin(5, 7);
  c.SetTextColour(0x0000FF);
  r = {1, 2, 3, 4};
  c.DrawText("say \"hi\"\\\n", &r, 0x825);
  EXPECT_EQ(c.ops(), "text 6 9 8 11 flags=2085 color=#FF0000 font=10,400,0,\"ARIAL\" \"say \\\"hi\\\"\\\\\\n\"\n");
}
