// The placement glyphs every editor tab draws itself, drawn into a bitmap
// and looked at.
#include <windows.h>

#include <gtest/gtest.h>

#include "editors/editor_controls_win32.h"
#include "gdi_test_support.h"

TEST(EditorControls, PlacementGlyphsLeanLeftCentreAndRight) {
  // Each glyph's first text line: where its ink starts and ends.
  int starts[3], ends[3];
  for (int i = 0; i < 3; ++i) {
    DibSurface surface(16, 16, RGB(255, 255, 255));
    DRAWITEMSTRUCT item{ODT_BUTTON, UINT(120 + i), 0, ODA_DRAWENTIRE, 0, nullptr, surface.dc(), {0, 0, 16, 16}, 0};
    DrawPlacementGlyph(&item, 120);
    starts[i] = ends[i] = -1;
    for (int x = 0; x < 16; ++x) {
      const COLORREF ink = surface.Pixel(x, 1 + 2 + 3);
      if (ink != GetSysColor(COLOR_BTNFACE) && ink != RGB(255, 255, 255)) {
        if (starts[i] < 0) starts[i] = x;
        ends[i] = x;
      }
    }
  }
  // The short second line (8 pixels) sits left, in the middle, right.
  EXPECT_EQ(starts[0], 2);
  EXPECT_EQ(ends[1] - starts[1], 7);
  EXPECT_EQ(starts[1], 1 + 3);
  EXPECT_EQ(ends[2], 1 + 12);
}
