// The Cairo canvas on its own pixels: shapes as GDI draws them, text laid out
// by the DrawText bits, fonts found by their Windows names, and pictures
// resampled smoothly.
#include <cairo.h>
#include <pango/pangocairo.h>

#include <algorithm>
#include <cstdlib>

#include "base/dib.h"
#include "render/cairo_canvas.h"
#include "test_support.h"

namespace {

// A white image surface with a canvas over it.
class Surface {
 public:
  Surface(int width, int height)
      : surface_(cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height)), cr_(cairo_create(surface_)) {
    canvas_ = new CairoCanvas(cr_);
    canvas_->FillRect({0, 0, width, height}, 0xFFFFFF);
  }
  ~Surface() {
    delete canvas_;
    cairo_destroy(cr_);
    cairo_surface_destroy(surface_);
  }
  CairoCanvas& canvas() { return *canvas_; }
  // 0xRRGGBB
  uint32_t At(int x, int y) {
    cairo_surface_flush(surface_);
    auto* row = cairo_image_surface_get_data(surface_) + y * cairo_image_surface_get_stride(surface_);
    return reinterpret_cast<uint32_t*>(row)[x] & 0xFFFFFF;
  }
  // The bounding box of every pixel that is not white.
  Rect Ink() {
    Rect ink{INT32_MAX, INT32_MAX, -1, -1};
    for (int y = 0; y < cairo_image_surface_get_height(surface_); ++y)
      for (int x = 0; x < cairo_image_surface_get_width(surface_); ++x)
        if (At(x, y) != 0xFFFFFF) {
          ink.left = std::min(ink.left, x), ink.top = std::min(ink.top, y);
          ink.right = std::max(ink.right, x + 1), ink.bottom = std::max(ink.bottom, y + 1);
        }
    return ink;
  }

 private:
  cairo_surface_t* surface_;
  cairo_t* cr_;
  CairoCanvas* canvas_;
};

int CentreX(const Rect& r) { return (r.left + r.right) / 2; }
int CentreY(const Rect& r) { return (r.top + r.bottom) / 2; }

}  // namespace

TEST(CairoCanvas, RectanglesKeepTheirRightAndBottomEdgesOutside) {
  Surface s(40, 40);
  s.canvas().SetPen(SolidPen(0x000000));
  s.canvas().SetBrush(SolidBrush(0x0000FF));  // red
  s.canvas().Rectangle({10, 10, 20, 20});
  EXPECT_EQ(s.At(10, 10), 0x000000u);
  EXPECT_EQ(s.At(19, 19), 0x000000u);
  EXPECT_EQ(s.At(15, 15), 0xFF0000u);
  EXPECT_EQ(s.At(20, 20), 0xFFFFFFu);
  // Without a pen the shape is one pixel smaller; an inverted one is drawn all the same.
  s.canvas().SetPen(kNullPen);
  s.canvas().Rectangle({30, 30, 25, 25});
  EXPECT_EQ(s.At(25, 25), 0xFF0000u);
  EXPECT_EQ(s.At(28, 28), 0xFF0000u);
  EXPECT_EQ(s.At(29, 29), 0xFFFFFFu);
  s.canvas().FrameRect({0, 0, 5, 5}, 0x00FF00);
  EXPECT_EQ(s.At(4, 2), 0x00FF00u);
  EXPECT_EQ(s.At(2, 2), 0xFFFFFFu);
}

TEST(CairoCanvas, ArialFindsAFaceWithItsMetrics) {
  PangoFontMap* map = pango_cairo_font_map_get_default();
  PangoContext* context = pango_font_map_create_context(map);
  PangoFontDescription* d = pango_font_description_from_string("ARIAL 20");
  PangoFont* font = pango_context_load_font(context, d);
  ASSERT_NE(font, nullptr);
  PangoFontDescription* found = pango_font_describe(font);
  std::string family = pango_font_description_get_family(found);
  EXPECT_TRUE(family == "Liberation Sans" || family == "Arial") << family;
  pango_font_description_free(found);
  pango_font_description_free(d);
  g_object_unref(font);
  g_object_unref(context);
}

TEST(CairoCanvas, TextHeightIsTheFontsCellHeightAndWordsBreak) {
  Surface s(300, 300);
  s.canvas().SetFont({40, 400, 0, "ARIAL"});
  Rect r{0, 0, 300, 0};
  int h = s.canvas().DrawText("Quernal", &r, kDtSingleLine | kDtCalcRect);
  EXPECT_NEAR(h, 40, 3);
  EXPECT_EQ(r.bottom, h);
  EXPECT_GT(r.right, 100);
  EXPECT_LT(r.right, 200);
  r = {0, 0, 150, 0};
  int wrapped = s.canvas().DrawText("one two three four five six", &r, kDtWordBreak | kDtCalcRect);
  EXPECT_GE(wrapped, 3 * 40 - 6) << "three lines or more in 150 pixels";
  r = {0, 0, 150, 0};
  EXPECT_NEAR(s.canvas().DrawText("one\r\ntwo", &r, kDtCalcRect), 2 * h, 2) << "line breaks break lines";
  EXPECT_EQ(s.Ink().right, -1) << "measuring draws nothing";
}

TEST(CairoCanvas, AlignmentAndVerticalPlacement) {
  const Rect box{0, 0, 300, 120};
  const struct {
    uint32_t format;
    int x, y;  // where the ink's centre must be, within 20 pixels
  } cases[] = {
      {kDtLeft | kDtSingleLine, 20, 15},     {kDtCenter | kDtSingleLine, 150, 15},
      {kDtRight | kDtSingleLine, 280, 15},   {kDtCenter | kDtSingleLine | kDtVCenter, 150, 60},
      {kDtRight | kDtSingleLine | kDtBottom, 280, 105}, {kDtCenter | kDtWordBreak, 150, 15},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.format);
    Surface s(300, 120);
    s.canvas().SetFont({30, 700, 0, "ARIAL"});
    s.canvas().SetTextColour(0x000000);
    Rect r = box;
    s.canvas().DrawText("WWW", &r, c.format);
    Rect ink = s.Ink();
    EXPECT_NEAR(CentreX(ink), c.x, 20);
    EXPECT_NEAR(CentreY(ink), c.y, 20);
  }
}

TEST(CairoCanvas, TextIsClippedToItsRectangleAndTheOriginMovesIt) {
  Surface s(300, 100);
  s.canvas().SetFont({40, 400, 0, "ARIAL"});
  s.canvas().SetOrigin(100, 20);
  Rect r{0, 0, 60, 30};
  s.canvas().DrawText("A long line of text", &r, kDtSingleLine);
  Rect ink = s.Ink();
  EXPECT_GE(ink.left, 100);
  EXPECT_LE(ink.right, 160);
  EXPECT_GE(ink.top, 20);
  EXPECT_LE(ink.bottom, 50);
}

TEST(CairoCanvas, PicturesAreScaledSmoothly) {
  // One-pixel black and white stripes shrunk to a quarter turn grey, not
  // black or white, with a filter that averages.
  BlockHandle dib = DibCreate(400, 400, 8);
  {
    BlockLock lock(dib);
    RgbQuad* table = DibColourTable(lock.bytes());
    table[1] = {255, 255, 255, 0};
    uint8_t* bits = DibBits(lock.bytes());
    for (int y = 0; y < 400; ++y)
      for (int x = 0; x < 400; ++x) bits[y * 400 + x] = x % 2;
  }
  Surface s(120, 120);
  s.canvas().SetOrigin(10, 10);
  s.canvas().DrawPicture(dib, 100, 100, true);
  for (int y = 12; y < 108; y += 7)
    for (int x = 12; x < 108; x += 5) {
      uint32_t grey = s.At(x, y) & 0xFF;
      ASSERT_GT(grey, 80u) << x << "," << y;
      ASSERT_LT(grey, 175u) << x << "," << y;
    }
  EXPECT_EQ(s.At(5, 5), 0xFFFFFFu);
  EXPECT_EQ(s.At(112, 112), 0xFFFFFFu);

  // A true-colour picture keeps its colours: bottom-up rows, blue first.
  BlockHandle rgb = DibCreate(2, 2, 24);
  {
    BlockLock lock(rgb);
    uint8_t* bits = DibBits(lock.bytes());
    bits[0] = 255;            // bottom left: blue
    bits[8 + 2] = 255;        // top left (second row in the block): red
  }
  Surface t(2, 2);
  t.canvas().DrawPicture(rgb, 2, 2, true);
  EXPECT_EQ(t.At(0, 1), 0x0000FFu);
  EXPECT_EQ(t.At(0, 0), 0xFF0000u);
  GlobalBlockFree(dib);
  GlobalBlockFree(rgb);
}

TEST(CairoCanvas, OnlyThePartOfAPictureOnTheSurfaceIsMadeAndItMatchesTheWhole) {
  BlockHandle dib = MakePatternDib(300, 200, 24, 5);
  // Shrunk: the part a small surface shows is the same as that part of the
  // whole picture drawn on a surface large enough for all of it.
  Surface whole(250, 170), part(60, 40);
  whole.canvas().DrawPicture(dib, 250, 170, true);
  part.canvas().SetOrigin(-100, -70);
  part.canvas().DrawPicture(dib, 250, 170, true);
  for (int y = 0; y < 40; ++y)
    for (int x = 0; x < 60; ++x) ASSERT_EQ(part.At(x, y), whole.At(x + 100, y + 70)) << x << "," << y;

  // Enlarged far beyond what one image may hold (40,000 pixels a side): the
  // middle of the picture still shows, in the colour of its middle pixel.
  BlockHandle quarters = DibCreate(2, 2, 24);
  {
    BlockLock lock(quarters);
    uint8_t* bits = DibBits(lock.bytes());  // bottom-up rows of 8 bytes, blue first
    bits[2] = 255;                          // bottom left red
    bits[3 + 1] = 255;                      // bottom right green
    bits[8] = 255;                          // top left blue
  }
  Surface big(40, 40);
  big.canvas().SetOrigin(-30000, -10000);
  big.canvas().DrawPicture(quarters, 40000, 40000, true);
  EXPECT_EQ(big.At(20, 20), 0x000000u) << "the top right quarter is black";
  big.canvas().SetOrigin(-10000, -30000);
  big.canvas().DrawPicture(quarters, 40000, 40000, true);
  EXPECT_EQ(big.At(20, 20), 0xFF0000u) << "the bottom left quarter is red";
  GlobalBlockFree(dib);
  GlobalBlockFree(quarters);
}
