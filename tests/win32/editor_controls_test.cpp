// The controls every editor tab draws itself: the labelled colour button
// and the placement glyphs, drawn into a bitmap and looked at.
#include <windows.h>

#include <gtest/gtest.h>

#include "editors/editor_controls_win32.h"

namespace {

// A white 40 x 24 bitmap to draw an owner-drawn button into.
class Canvas {
 public:
  Canvas() {
    HDC screen = GetDC(nullptr);
    dc_ = CreateCompatibleDC(screen);
    bitmap_ = CreateCompatibleBitmap(screen, 40, 24);
    ReleaseDC(nullptr, screen);
    old_ = SelectObject(dc_, bitmap_);
    RECT all{0, 0, 40, 24};
    FillRect(dc_, &all, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
  }
  ~Canvas() {
    SelectObject(dc_, old_);
    DeleteObject(bitmap_);
    DeleteDC(dc_);
  }
  DRAWITEMSTRUCT Item(UINT id, UINT state, HWND button = nullptr, int w = 40, int h = 24) const {
    DRAWITEMSTRUCT item{};
    item.CtlType = ODT_BUTTON;
    item.CtlID = id;
    item.itemState = state;
    item.hwndItem = button;
    item.hDC = dc_;
    item.rcItem = {0, 0, w, h};
    return item;
  }
  // How many pixels of `colour` lie in the rectangle.
  int Count(COLORREF colour, RECT r) const {
    int n = 0;
    for (int y = r.top; y < r.bottom; ++y)
      for (int x = r.left; x < r.right; ++x) n += GetPixel(dc_, x, y) == colour;
    return n;
  }

 private:
  HDC dc_;
  HBITMAP bitmap_;
  HGDIOBJ old_;
};

}  // namespace

TEST(EditorControls, PlacementGlyphsLeanLeftCentreAndRight) {
  // Each glyph's first text line: where its ink starts and ends.
  int starts[3], ends[3];
  for (int i = 0; i < 3; ++i) {
    Canvas canvas;
    DRAWITEMSTRUCT item = canvas.Item(120 + i, 0, nullptr, 16, 16);
    DrawPlacementGlyph(&item, 120);
    starts[i] = ends[i] = -1;
    for (int x = 0; x < 16; ++x)
      if (GetPixel(item.hDC, x, 1 + 2 + 3) != GetSysColor(COLOR_BTNFACE) &&
          GetPixel(item.hDC, x, 1 + 2 + 3) != RGB(255, 255, 255)) {
        if (starts[i] < 0) starts[i] = x;
        ends[i] = x;
      }
  }
  // The short second line (8 pixels) sits left, in the middle, right.
  EXPECT_EQ(starts[0], 2);
  EXPECT_EQ(ends[1] - starts[1], 7);
  EXPECT_EQ(starts[1], 1 + 3);
  EXPECT_EQ(ends[2], 1 + 12);
}
