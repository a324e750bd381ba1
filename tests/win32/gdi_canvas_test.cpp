// The GDI canvas on a memory device context: what a stage keeps and gives
// back, and how Dibs reach the device.
#include <algorithm>
#include <tuple>
#include <utility>

#include "base/dib.h"
#include "bench/photo_calendar.h"
#include "gdi_test_support.h"
#include "pictures/resampler.h"
#include "render/gdi_canvas_win32.h"
#include "render/primitives.h"
#include "render/primitives_win32.h"
#include "render/screen_picture_win32.h"
#include "test_support.h"

TEST_F(QuernalTest, GdiStagesReuseTheirObjectsAndGiveThemBack) {
  DibSurface surface(50, 50, 0);
  HDC dc = surface.dc();
  const HGDIOBJ font = GetCurrentObject(dc, OBJ_FONT), pen = GetCurrentObject(dc, OBJ_PEN),
                brush = GetCurrentObject(dc, OBJ_BRUSH);
  const int before = LiveGdiObjects();
  {
    GdiCanvas canvas(dc);
    const FontSpec heading{32, 700, 1, "ARIAL"}, dates{-5, 400, 0, "ARIAL"};
    for (int i = 0; i < 10; ++i) {
      canvas.SetFont(i % 2 ? heading : dates);
      canvas.SetPen(i % 3 ? SolidPen(i % 2 ? 0x0000FF : 0x00FF00) : kNullPen);
      canvas.SetBrush(SolidBrush(i % 2 ? 0x0000FF : 0x00FF00));
    }
    EXPECT_EQ(LiveGdiObjects(), before + 6) << "two of each kind, however often they switch";
    LOGFONTA made;
    GetObjectA(GetCurrentObject(dc, OBJ_FONT), sizeof made, &made);
    EXPECT_EQ(made.lfHeight, 32);
    EXPECT_EQ(made.lfWeight, 700);
    EXPECT_EQ(made.lfItalic, 1);
    EXPECT_EQ(made.lfQuality, 4);
    EXPECT_STREQ(made.lfFaceName, "ARIAL");
    canvas.SetFont(dates);
    GetObjectA(GetCurrentObject(dc, OBJ_FONT), sizeof made, &made);
    EXPECT_EQ(made.lfHeight, 0) << "no height: the default size, not a character height";

    canvas.EndStage();
    EXPECT_EQ(LiveGdiObjects(), before);
    EXPECT_TRUE(GetCurrentObject(dc, OBJ_FONT) == font && GetCurrentObject(dc, OBJ_PEN) == pen &&
                GetCurrentObject(dc, OBJ_BRUSH) == brush);

    // A soft shadow's worth of brushes stays within the cache, and the brush
    // a saved state holds lives until the state is restored.
    canvas.SetBrush(SolidBrush(0x123456));
    const HGDIOBJ saved = GetCurrentObject(dc, OBJ_BRUSH);
    canvas.SaveState();
    for (Colour c = 0; c < 300; ++c) canvas.SetBrush(SolidBrush(c));
    EXPECT_LE(LiveGdiObjects(), before + static_cast<int>(GdiCanvas::kCachePerKind));
    canvas.RestoreState();
    EXPECT_EQ(GetCurrentObject(dc, OBJ_BRUSH), saved);
    EXPECT_EQ(GetObjectType(saved), static_cast<DWORD>(OBJ_BRUSH));
  }
  EXPECT_EQ(LiveGdiObjects(), before) << "the destructor ends the last stage";
  EXPECT_EQ(GetCurrentObject(dc, OBJ_BRUSH), brush);
}

TEST_F(QuernalTest, GdiPicturesAreUprightAndTakeTheWholeColourTable) {
  // An 8-bit Dib whose biClrUsed says 16 while its table has 256 entries:
  // its upper half of index 201, its lower half (the first rows) of index 200.
  constexpr COLORREF kUpper = RGB(90, 60, 30), kLower = RGB(10, 20, 250);
  BlockHandle dib = DibCreate(30, 20, 8);
  {
    BlockLock lock(dib);
    lock.as<BitmapInfoHeader>()->biClrUsed = 16;
    DibColourTable(lock.bytes())[200] = RgbQuad{250, 20, 10, 0};
    DibColourTable(lock.bytes())[201] = RgbQuad{30, 60, 90, 0};
    uint8_t* rows = DibBits(lock.bytes());
    const uint64_t half = DibRowStride(30, 8) * 10;
    std::fill(rows, rows + half, 200);
    std::fill(rows + half, rows + 2 * half, 201);
  }
  for (bool printing : {true, false}) {
    SCOPED_TRACE(printing);
    DibSurface surface(100, 100, RGB(255, 255, 255));
    GdiCanvas canvas(surface.dc());
    canvas.SetOrigin(5, 5);
    canvas.DrawPicture(dib, 61, 40, printing);
    // The screen's smooth enlargement blends the halves over a few rows.
    EXPECT_EQ(surface.Count(5, 5, 66, 21, kUpper), 61 * 16);
    EXPECT_EQ(surface.Count(5, 29, 66, 45, kLower), 61 * 16);
    EXPECT_EQ(surface.Count(0, 0, 100, 100, RGB(255, 255, 255)), 100 * 100 - 61 * 40);

    // Drawn far larger than any page, only the part on the surface is
    // stretched, the right way up: a piece of the upper half, then of the lower.
    for (const auto& part : {std::make_pair(-5000, kUpper), std::make_pair(-35000, kLower)}) {
      canvas.SetOrigin(-10000, part.first);
      canvas.DrawPicture(dib, 40000, 40000, printing);
      EXPECT_EQ(surface.Count(0, 0, 100, 100, part.second), 100 * 100);
    }
  }
  GlobalBlockFree(dib);
}

// The screen shows a picture as the resampler makes it, making only the part
// a paint shows; the window keeps what it made in tiles. Drawn from those,
// whole or in part, first paint of a part or not, the page has exactly the
// pixels of the whole picture resampled; a new picture, a new size or a page
// without a picture lets the tiles go.
TEST_F(QuernalTest, KeptScreenPicturesDrawTheSamePixelsAsFreshOnes) {
  BlockHandle photo = PhotoLikePicture(1200, 900, 3), other = PhotoLikePicture(1200, 900, 4);
  ScreenPictureCache kept;
  struct {
    int width, height;
    RECT clip;     // a part of the view repainted alone; empty: all of it
    bool makes;    // whether the paint had tiles to make
  } draws[] = {{301, 226, {}, true},
               {301, 226, {40, 30, 90, 200}, false},
               {1500, 1125, {700, 3, 1505, 9}, true},  // a first paint of a part makes only its tiles
               {1500, 1125, {600, 0, 1505, 200}, true},
               {1500, 1125, {}, true},
               {1500, 1125, {257, 511, 1100, 1000}, false}};
  int made = 0;
  for (const auto& d : draws) {
    SCOPED_TRACE(d.width);
    auto draw = [&](DibSurface& surface, ScreenPictureCache* pictures, BlockHandle dib) {
      GdiCanvas canvas(surface.dc(), pictures);
      canvas.SetOrigin(7, 5);
      canvas.DrawPicture(dib, d.width, d.height, false);
      canvas.SetOrigin(0, 0);
    };
    const int w = d.width + 10, h = d.height + 10;
    DibSurface resampled(w, h, RGB(255, 255, 255)), fresh(w, h, RGB(255, 255, 255)),
        fromCopy(w, h, RGB(255, 255, 255)), expected(w, h, RGB(255, 255, 255));
    {
      BlockHandle whole = ResampleDib(photo, d.width, d.height);
      BlockLock lock(whole);
      DibInfo info;
      const void* bits = ReadDib(whole, lock, &info);
      ASSERT_NE(bits, nullptr);
      SetDIBitsToDevice(resampled.dc(), 7, 5, d.width, d.height, 0, 0, 0, d.height, bits,
                        reinterpret_cast<const BITMAPINFO*>(&info), DIB_RGB_COLORS);
      GlobalBlockFree(whole);
    }
    draw(fresh, nullptr, photo);
    EXPECT_EQ(resampled.Differing(fresh), 0);
    const RECT part = d.clip.right ? d.clip : RECT{0, 0, w, h};
    BitBlt(expected.dc(), part.left, part.top, part.right - part.left, part.bottom - part.top, fresh.dc(), part.left,
           part.top, SRCCOPY);
    IntersectClipRect(fromCopy.dc(), part.left, part.top, part.right, part.bottom);
    draw(fromCopy, &kept, photo);
    EXPECT_EQ(expected.Differing(fromCopy), 0);
    EXPECT_EQ(kept.made(), made + d.makes);
    made = kept.made();
  }
  DibSurface surface(320, 240, RGB(255, 255, 255));
  const auto drawOn = [&](BlockHandle dib) {
    GdiCanvas canvas(surface.dc(), &kept);
    if (dib) canvas.DrawPicture(dib, 300, 225, false);
  };
  drawOn(photo);
  drawOn(other);
  EXPECT_NE(surface.Pixel(150, 100), RGB(255, 255, 255));
  drawOn(0);  // a page without a picture lets the tiles go
  drawOn(other);
  EXPECT_EQ(kept.made(), made + 3);
  GlobalBlockFree(photo);
  GlobalBlockFree(other);
}

// The printer gets a picture larger than its box averaged down to the box,
// pixel for pixel; a smaller one as it is, to be scaled up by the printer.
TEST_F(QuernalTest, PrintedPicturesHaveNoMorePixelsThanTheirBox) {
  BlockHandle photo = PhotoLikePicture(1200, 900, 5), small = PhotoLikePicture(30, 20, 6);
  for (const auto& [dib, w, h] : {std::make_tuple(photo, 300, 225), std::make_tuple(small, 30, 20)}) {
    DibSurface printed(w, h, RGB(255, 255, 255)), reference(w, h, RGB(255, 255, 255));
    GdiCanvas(printed.dc()).DrawPicture(dib, w, h, true);
    BlockHandle expected = dib == photo ? ResampleDib(photo, w, h) : DuplicateBlock(small);
    GdiCanvas(reference.dc()).DrawPicture(expected, w, h, true);
    EXPECT_EQ(printed.Differing(reference), 0) << w;
    GlobalBlockFree(expected);
  }
  GlobalBlockFree(photo);
  GlobalBlockFree(small);
}

// Where only part of the device is drawn, a soft shadow skips the rings that
// cannot show there, and the part shows exactly what the whole shadow shows.
TEST_F(QuernalTest, ASoftShadowDrawnInPartMatchesTheWholeShadow) {
  const RECT parts[] = {{150, 100, 200, 140}, {0, 0, 30, 300}, {370, 250, 400, 300}, {5, 5, 6, 6}};
  const auto shadow = [](HDC dc) {
    GdiCanvas canvas(dc);
    DrawSoftShadow(canvas, 0, 0, 360, 260, RGB(20, 40, 60), RGB(250, 240, 230), 10);
  };
  DibSurface whole(400, 300, RGB(255, 255, 255));
  shadow(whole.dc());
  for (const RECT& r : parts) {
    DibSurface part(400, 300, RGB(255, 255, 255)), expected(400, 300, RGB(255, 255, 255));
    IntersectClipRect(part.dc(), r.left, r.top, r.right, r.bottom);
    shadow(part.dc());
    BitBlt(expected.dc(), r.left, r.top, r.right - r.left, r.bottom - r.top, whole.dc(), r.left, r.top, SRCCOPY);
    EXPECT_EQ(part.Differing(expected), 0) << r.left << "," << r.top;
  }
}
