// Palettes, the screen's depth and the colour swatch button.
#include "gdi_test_support.h"
#include "render/primitives_win32.h"
#include "test_support.h"

TEST_F(QuernalTest, PalettesHave16Or256Entries) {
  uint8_t triplets[768];
  for (int i = 0; i < 768; ++i) triplets[i] = static_cast<uint8_t>(i * 7);
  DibSurface surface(4, 4, 0);
  const HGDIOBJ defaultPalette = GetCurrentObject(surface.dc(), OBJ_PAL);
  const int before = LiveGdiObjects();
  const struct {
    int count, entries;
  } cases[] = {{2, 16}, {16, 16}, {17, 256}, {256, 256}, {1, 1}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.count);
    PaletteHolder holder{};
    ASSERT_EQ(MakePalette(surface.dc(), &holder, triplets, c.count), 1);
    EXPECT_EQ(holder.previous, defaultPalette);
    EXPECT_EQ(GetCurrentObject(surface.dc(), OBJ_PAL), holder.palette);
    WORD entries = 0;
    GetObjectA(holder.palette, sizeof entries, &entries);
    EXPECT_EQ(entries, c.entries);
    // The last entry, past the count, comes from the triplets that follow.
    PALETTEENTRY last{};
    GetPaletteEntries(holder.palette, c.entries - 1, 1, &last);
    const uint8_t* t = triplets + (c.entries - 1) * 3;
    EXPECT_EQ(RGB(last.peRed, last.peGreen, last.peBlue), RGB(t[0], t[1], t[2]));
    ReleasePalette(surface.dc(), &holder);
    EXPECT_FALSE(holder.palette || holder.previous || holder.copy);
    EXPECT_EQ(GetCurrentObject(surface.dc(), OBJ_PAL), defaultPalette);
  }
  // More than 256 colours: nothing built, and that is not a failure.
  PaletteHolder holder{};
  EXPECT_EQ(MakePalette(surface.dc(), &holder, triplets, 300), 1);
  EXPECT_FALSE(holder.palette || holder.previous || holder.copy);
  EXPECT_EQ(LiveGdiObjects(), before);
}

TEST_F(QuernalTest, ColourSwatchShowsItsColour) {
  constexpr COLORREF kSwatch = RGB(200, 20, 120);
  DibSurface plain(70, 50, 0), focused(70, 50, 0), pressed(70, 50, 0), disabled(70, 50, 0);
  auto drawAll = [&] {
    for (const auto& [surface, state] : {std::pair<DibSurface*, UINT>{&plain, 0}, {&focused, ODS_FOCUS},
                                         {&pressed, ODS_SELECTED}, {&disabled, ODS_DISABLED}}) {
      DRAWITEMSTRUCT item{ODT_BUTTON, 0, 0, ODA_DRAWENTIRE, state, nullptr, surface->dc(), {10, 10, 60, 40}, 0};
      DrawColourSwatchButton(&item, kSwatch);
    }
  };
  drawAll();  // the first time makes the system's brushes
  const int before = LiveGdiObjects();
  drawAll();
  EXPECT_EQ(LiveGdiObjects(), before);

  EXPECT_EQ(plain.Pixel(30, 25), kSwatch);
  EXPECT_EQ(plain.Pixel(56, 36), kSwatch);
  EXPECT_EQ(plain.Pixel(57, 37), 0u) << "the swatch stops two pixels short of the right and bottom";
  EXPECT_EQ(disabled.Pixel(30, 25), GetSysColor(COLOR_BTNFACE));
  EXPECT_NE(plain.Pixel(10, 10), pressed.Pixel(10, 10)) << "raised, then sunken";
  // Focus changes nothing but the dotted outline of {14, 13, 56, 36}.
  int changed = 0;
  for (int y = 0; y < 50; ++y)
    for (int x = 0; x < 70; ++x) {
      if (plain.Pixel(x, y) == focused.Pixel(x, y)) continue;
      ++changed;
      const bool outline = ((x == 14 || x == 55) && y >= 13 && y < 36) || ((y == 13 || y == 35) && x >= 14 && x < 56);
      EXPECT_TRUE(outline) << x << "," << y;
    }
  EXPECT_GT(changed, 20);
}
