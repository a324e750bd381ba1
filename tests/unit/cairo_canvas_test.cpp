// The Cairo canvas on its own pixels: shapes as GDI draws them, text laid out
// by the DrawText bits, fonts found by their Windows names, and pictures
// resampled smoothly, soft shadows as their rings draw them.
#include <cairo.h>
#include <pango/pangocairo.h>

#include <algorithm>
#include <initializer_list>
#include <cstdlib>
#include <string>
#include <vector>

#include "base/dib.h"
#include "pictures/resampler.h"
#include "render/cairo_canvas.h"
#include "render/primitives.h"
#include "test_support.h"

namespace {

// The Cairo canvas drawing soft shadows one RoundRect per ring, as any canvas
// can: what a shadow must look like. It may or may not tell where it can draw.
class RingByRingCanvas : public CairoCanvas {
 public:
  RingByRingCanvas(cairo_t* cr, bool culls) : CairoCanvas(cr), culls_(culls) {}
  void DrawShadowRings(const ShadowRings& rings) override { Canvas::DrawShadowRings(rings); }
  bool VisibleBox(Rect* box) override { return culls_ && CairoCanvas::VisibleBox(box); }

 private:
  bool culls_;
};

enum class Rings { kCanvasOwn, kOneByOne, kOneByOneCulled };

// A white image surface with a canvas over it, or over a window onto all of
// it (a surface that is not an image, which the canvas cannot write into).
class Surface {
 public:
  Surface(int width, int height, Rings rings = Rings::kCanvasOwn, bool window = false)
      : surface_(cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height)),
        window_(window ? cairo_surface_create_for_rectangle(surface_, 0, 0, width, height) : nullptr),
        cr_(cairo_create(window ? window_ : surface_)) {
    canvas_ = rings == Rings::kCanvasOwn ? new CairoCanvas(cr_) : new RingByRingCanvas(cr_, rings == Rings::kOneByOneCulled);
    canvas_->FillRect({0, 0, width, height}, 0xFFFFFF);
  }
  ~Surface() {
    delete canvas_;
    cairo_destroy(cr_);
    if (window_) cairo_surface_destroy(window_);
    cairo_surface_destroy(surface_);
  }
  CairoCanvas& canvas() { return *canvas_; }
  int width() const { return cairo_image_surface_get_width(surface_); }
  int height() const { return cairo_image_surface_get_height(surface_); }
  // 0xRRGGBB
  uint32_t At(int x, int y) {
    cairo_surface_flush(surface_);
    return Raw(x, y);
  }
  // Every pixel as 0xRRGGBB, row by row.
  std::vector<uint32_t> Pixels() {
    cairo_surface_flush(surface_);
    std::vector<uint32_t> pixels;
    for (int y = 0; y < height(); ++y)
      for (int x = 0; x < width(); ++x) pixels.push_back(Raw(x, y));
    return pixels;
  }
  // The bounding box of every pixel that is not white.
  Rect Ink() {
    cairo_surface_flush(surface_);
    Rect ink{INT32_MAX, INT32_MAX, -1, -1};
    for (int y = 0; y < height(); ++y)
      for (int x = 0; x < width(); ++x)
        if (Raw(x, y) != 0xFFFFFF) {
          ink.left = std::min(ink.left, x), ink.top = std::min(ink.top, y);
          ink.right = std::max(ink.right, x + 1), ink.bottom = std::max(ink.bottom, y + 1);
        }
    return ink;
  }
  struct Pixel { int x, y; uint32_t rgb; };
  // Each pixel as the surface has it.
  void Expect(std::initializer_list<Pixel> pixels) {
    for (const Pixel& p : pixels) EXPECT_EQ(At(p.x, p.y), p.rgb) << "at " << p.x << "," << p.y;
  }

 private:
  uint32_t Raw(int x, int y) const {
    auto* row = cairo_image_surface_get_data(surface_) + y * cairo_image_surface_get_stride(surface_);
    return reinterpret_cast<uint32_t*>(row)[x] & 0xFFFFFF;
  }

  cairo_surface_t* surface_;
  cairo_surface_t* window_;
  cairo_t* cr_;
  CairoCanvas* canvas_;
};

int CentreX(const Rect& r) { return (r.left + r.right) / 2; }
int CentreY(const Rect& r) { return (r.top + r.bottom) / 2; }

// A true-colour 2 x 2 picture: blue top left, black top right, red bottom
// left, green bottom right, in bottom-up rows of 8 bytes, blue first.
BlockHandle Quarters() {
  BlockHandle dib = DibCreate(2, 2, 24);
  BlockLock lock(dib);
  uint8_t* bits = DibBits(lock.bytes());
  bits[2] = 255;      // bottom left red
  bits[3 + 1] = 255;  // bottom right green
  bits[8] = 255;      // top left blue
  return dib;
}

// The first pixel of a w-wide surface that is not `expected` inside `clip`
// and white outside it, as "x,y", or "" when there is none.
std::string FirstDifference(const std::vector<uint32_t>& expected, const std::vector<uint32_t>& got, int w,
                            const Rect& clip) {
  for (size_t i = 0; i < got.size(); ++i) {
    const int x = static_cast<int>(i % w), y = static_cast<int>(i / w);
    const bool inside = x >= clip.left && x < clip.right && y >= clip.top && y < clip.bottom;
    if (got[i] != (inside ? expected[i] : 0xFFFFFF)) return std::to_string(x) + "," + std::to_string(y);
  }
  return "";
}

}  // namespace

TEST(CairoCanvas, RectanglesKeepTheirRightAndBottomEdgesOutside) {
  Surface s(40, 40);
  s.canvas().SetPen(SolidPen(0x000000));
  s.canvas().SetBrush(SolidBrush(0x0000FF));  // red
  s.canvas().Rectangle({10, 10, 20, 20});
  s.Expect({{10, 10, 0x000000}, {19, 19, 0x000000}, {15, 15, 0xFF0000}, {20, 20, 0xFFFFFF}});
  // Without a pen the shape is one pixel smaller; an inverted one is drawn all the same.
  s.canvas().SetPen(kNullPen);
  s.canvas().Rectangle({30, 30, 25, 25});
  s.Expect({{25, 25, 0xFF0000}, {28, 28, 0xFF0000}, {29, 29, 0xFFFFFF}});
  // An empty one draws nothing, not even a pixel to its left.
  s.canvas().Rectangle({35, 30, 35, 38});
  s.Expect({{34, 33, 0xFFFFFF}});
  s.canvas().FrameRect({0, 0, 5, 5}, 0x00FF00);
  s.Expect({{4, 2, 0x00FF00}, {2, 2, 0xFFFFFF}});
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

// Text lands where its format puts it in its rectangle, moved by the
// origin, and never outside the rectangle.
TEST(CairoCanvas, TextIsPlacedInItsRectangleClippedToItAndMovedByTheOrigin) {
  const Rect box{0, 0, 300, 120};
  const struct {
    const char* text;
    Rect r;
    int originX, originY;
    uint32_t format;
    int x, y;  // where the ink's centre must be, within 20 pixels
  } cases[] = {
      {"WWW", box, 0, 0, kDtLeft | kDtSingleLine, 20, 15},   {"WWW", box, 0, 0, kDtCenter | kDtSingleLine, 150, 15},
      {"WWW", box, 0, 0, kDtRight | kDtSingleLine, 280, 15}, {"WWW", box, 0, 0, kDtCenter | kDtWordBreak, 150, 15},
      {"WWW", box, 0, 0, kDtCenter | kDtSingleLine | kDtVCenter, 150, 60},
      {"WWW", box, 0, 0, kDtRight | kDtSingleLine | kDtBottom, 280, 105},
      {"A long line of text", {0, 0, 60, 30}, 100, 20, kDtSingleLine, 130, 35},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.text << " " << c.format);
    Surface s(300, 120);
    s.canvas().SetFont({30, 700, 0, "ARIAL"});
    s.canvas().SetTextColour(0x000000);
    s.canvas().SetOrigin(c.originX, c.originY);
    Rect r = c.r;
    s.canvas().DrawText(c.text, &r, c.format);
    const Rect ink = s.Ink();
    EXPECT_NEAR(CentreX(ink), c.x, 20);
    EXPECT_NEAR(CentreY(ink), c.y, 20);
    EXPECT_GE(ink.left, c.r.left + c.originX);
    EXPECT_LE(ink.right, c.r.right + c.originX);
    EXPECT_GE(ink.top, c.r.top + c.originY);
    EXPECT_LE(ink.bottom, c.r.bottom + c.originY);
  }
}

TEST(CairoCanvas, APictureIsDrawnAsTheResamplerMakesItOnEverySurface) {
  enum Fill { kPattern, kWhite };
  const struct {
    int sourceW, sourceH, bits, width, height;
    bool window;  // drawn through a surface that is not an image
    Fill fill;    // kWhite: every byte 255, which must stay 255
  } cases[] = {
      {97, 61, 24, 40, 25, false, kPattern},  {97, 61, 24, 97, 61, false, kPattern},  // the same size: a copy
      {300, 20, 8, 31, 19, true, kPattern},   {1, 3000, 24, 1, 7, false, kWhite},
      {640, 3, 8, 17, 1, true, kPattern},     {1200, 1200, 24, 3, 3, false, kPattern},
      {20, 15, 24, 61, 47, false, kPattern},  {20, 15, 8, 61, 47, true, kPattern},  // enlarged
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::to_string(c.sourceW) + "x" + std::to_string(c.sourceH) + " to " + std::to_string(c.width) +
                 "x" + std::to_string(c.height));
    BlockHandle dib = MakePatternDib(c.sourceW, c.sourceH, c.bits, 3);
    if (c.fill == kWhite) {
      BlockLock lock(dib);
      std::fill(DibBits(lock.bytes()), lock.bytes() + GlobalBlockSize(dib), 255);
    }
    BlockHandle expected = ResampleDib(dib, c.width, c.height);
    Surface s(c.width + 20, c.height + 20, Rings::kCanvasOwn, c.window);
    s.canvas().SetOrigin(10, 10);
    s.canvas().DrawPicture(dib, c.width, c.height, true);
    {
      BlockLock lock(expected);
      std::vector<uint8_t> row(size_t(c.width) * 3);
      for (int y = 0; y < c.height; ++y) {
        DibRowBgr(lock.bytes(), y, row.data());
        for (int x = 0; x < c.width; ++x) {
          const uint8_t* p = &row[size_t(x) * 3];
          ASSERT_EQ(s.At(x + 10, y + 10), uint32_t(p[2]) << 16 | p[1] << 8 | p[0]) << x << "," << y;
          if (c.fill == kWhite) {
            ASSERT_EQ(p[0] & p[1] & p[2], 255);
          }
        }
      }
    }
    s.Expect({{9, 9, 0xFFFFFF}, {c.width + 10, c.height + 10, 0xFFFFFF}});
    GlobalBlockFree(dib);
    GlobalBlockFree(expected);
  }
}

TEST(CairoCanvas, APictureKeepsItsColoursAndOnlyThePartOnTheSurfaceIsMade) {
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
  BlockHandle quarters = Quarters();
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

TEST(CairoCanvas, SoftShadowsHaveThePixelsOfTheirRings) {
  const struct {
    int width, height, softness;  // n = width * softness / 100
    Colour shadow, background;
    int originX, originY;
  } cases[] = {
      {20, 50, 5, 0x000000, 0xFFFFFF, 3, 3},          // n = 1: one ring in the background colour
      {40, 20, 10, 0x000000, 0xFFFFFF, 0, 0},         // n = 4
      {70, 45, 10, 0x123456, 0xABCDEF, 5, 2},         // n = 7
      {300, 200, 5, 0x202020, 0xF0E0D0, 10, 10},      // n = 15, as on a page
      {510, 100, 50, 0x0000FF, 0x00FF00, 0, 0},       // n = 255, every ring its own weight
      {600, 300, 50, 0x000000, 0xFFFFFF, -40, -30},   // n = 300, a ring per weight, partly off the surface
      {601, 80, 77, 0xFFFFFF, 0x000000, 0, 0},        // n = 462, lighter than the background
      {100, 20, 40, 0x000000, 0xFFFFFF, 0, 0},        // corners wider than the rings are tall
      {40, 10, 150, 0x404040, 0xFFFFFF, 0, 0},        // rings that turn inside out
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::to_string(c.width) + "x" + std::to_string(c.height) + " at " + std::to_string(c.softness));
    const int n = c.width * c.softness / 100;
    const int w = std::max(c.width, n) + n + 10, h = std::max(c.height, n) + n + 10;
    Surface rings(w, h, Rings::kOneByOne), own(w, h);
    for (Surface* s : {&rings, &own}) {
      s->canvas().SetOrigin(c.originX, c.originY);
      DrawSoftShadow(s->canvas(), 0, 0, c.width, c.height, c.shadow, c.background, c.softness);
    }
    EXPECT_EQ(FirstDifference(rings.Pixels(), own.Pixels(), w, {0, 0, w, h}), "");
  }
}

TEST(CairoCanvas, ASoftShadowDrawnInAClipIsTheWholeShadowClipped) {
  // Rectangles of three sizes at every place over the shadow, so that each
  // ring's edges and rounded corners come inside and outside a clip.
  const int width = 50, height = 30, softness = 30;  // n = 15
  const int w = 80, h = 60, originX = 3, originY = 2;
  Surface whole(w, h, Rings::kOneByOne);
  whole.canvas().SetOrigin(originX, originY);
  DrawSoftShadow(whole.canvas(), 0, 0, width, height, 0x000000, 0xFFFFFF, softness);
  const std::vector<uint32_t> expected = whole.Pixels();
  Surface culled(w, h, Rings::kOneByOneCulled), own(w, h);
  const Rect sizes[] = {{0, 0, 1, 1}, {0, 0, 3, 9}, {0, 0, 12, 4}};
  for (const Rect& size : sizes)
    for (int y = -2; y < h; ++y)
      for (int x = -2; x < w; ++x) {
        const Rect clip = Offset(size, x, y);
        for (Surface* s : {&culled, &own}) {
          Canvas& c = s->canvas();
          c.SetOrigin(0, 0);
          c.FillRect({0, 0, w, h}, 0xFFFFFF);
          c.Clip(clip);
          c.SetOrigin(originX, originY);
          DrawSoftShadow(c, 0, 0, width, height, 0x000000, 0xFFFFFF, softness);
          c.Unclip();
          ASSERT_EQ(FirstDifference(expected, s->Pixels(), w, clip), "")
              << (s == &culled ? "one by one" : "own") << " in a clip at " << x << "," << y;
        }
      }
}
