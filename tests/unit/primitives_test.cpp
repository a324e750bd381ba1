#include <climits>
#include <string>
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

// Everything drawing a black soft shadow on white over {left, top, right,
// bottom} draws, in `clip` when there is one.
static std::vector<Op> ShadowOps(const Rect& box, int32_t softness, const Rect* clip = nullptr) {
  OpsCanvas canvas;
  if (clip) canvas.Clip(*clip);
  DrawSoftShadow(canvas, box.left, box.top, box.right, box.bottom, 0x000000, 0xFFFFFF, softness);
  return ParseOps(canvas.ops());
}

TEST(Primitives, SoftShadowRingsShrinkTowardTheShadowColour) {
  EXPECT_EQ(Lines(ShadowOps({0, 0, 19, 50}, 5)), std::vector<std::string>{}) << "n = 0";
  EXPECT_EQ(Lines(ShadowOps({100, 100, 120, 150}, 5)),
            std::vector<std::string>{"roundrect 0 0 21 51 1 1 pen=none brush=#FFFFFF"})
      << "n = 1: one ring in the background colour";

  auto rings = ShadowOps({0, 0, 40, 20}, 10);
  ASSERT_EQ(rings.size(), 4u);
  EXPECT_EQ(rings[0].r, (Rect{2, 2, 44, 24}));
  EXPECT_EQ(rings[3].r, (Rect{5, 5, 41, 21}));
  EXPECT_EQ(rings[3].ellipse, 4);
  EXPECT_EQ(rings[1].brush, "#C0C0C0");  // t = 63: 255 * 192 / 255
  EXPECT_EQ(rings[3].brush, "#404040");  // t = 191

  // A damaged record's softness: one ring for each weight of 0 to 254.
  EXPECT_EQ(ShadowOps({0, 0, 1000, 500}, INT32_MAX).size(), 255u);
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
    std::vector<int> lefts;
    for (const Op& op : OfKind(ShadowOps({0, 0, 40, 20}, 10, &c.clip), "roundrect")) lefts.push_back(op.r.left);
    EXPECT_EQ(lefts, c.lefts);
  }
}

TEST(OpsCanvas, MeasuresTextByTheFixedRule) {
  OpsCanvas c;
  c.SetFont({10, 400, 0, "ARIAL"});
  // Characters 5 wide. Several lines keep the box's width unless a line is wider.
  const struct { const char* text; Rect box; uint32_t format; int height; Rect measured; } cases[] = {
      // "aaaa bbbb cccc" is 70 wide, so two lines fit 20 characters each.
      {"aaaa bbbb cccc dddd eeee", {0, 0, 100, 0}, kDtWordBreak, 20, {0, 0, 100, 20}},
      {"one\r\ntwo\nthree", {0, 0, 100, 0}, 0, 30, {0, 0, 100, 30}},
      {"single line", {10, 10, 20, 20}, kDtSingleLine, 10, {10, 10, 65, 20}},
      {"unbreakable word", {0, 0, 12, 0}, kDtWordBreak, 20, {0, 0, 55, 20}},  // widens the box
  };
  for (const auto& m : cases) {
    Rect r = m.box;
    EXPECT_EQ(c.DrawText(m.text, &r, m.format | kDtCalcRect), m.height) << m.text;
    EXPECT_EQ(r, m.measured) << m.text;
  }
  EXPECT_EQ(c.ops(), "") << "measuring draws nothing";

  c.SetOrigin(5, 7);
  c.SetTextColour(0x0000FF);
  Rect r{1, 2, 3, 4};
  c.DrawText("say \"hi\"\\\n", &r, 0x825);
  EXPECT_EQ(c.ops(), "text 6 9 8 11 flags=2085 color=#FF0000 font=10,400,0,\"ARIAL\" \"say \\\"hi\\\"\\\\\\n\"\n");
}
