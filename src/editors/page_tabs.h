// The five tabs of the page property sheet as data: which control edits
// which field of the month page, and the font and colour buttons each tab
// opens its choosers from.
#pragma once
#include <cstddef>

#include "editors/control_binding.h"

// A font button, its sample static and the four fields it edits.
struct FontButtonBinding {
  int button, sample;
  size_t face, weight, italic, size;  // offsets into the record
};
// A colour button and its COLORREF field.
struct ColourButtonBinding {
  int button;
  size_t colour;
};

struct PageTab {
  const char* templateName;  // "PagePropertyOne" ...
  const char* caption;       // the tab's caption in the sheet
  const ControlBinding* controls;
  size_t controlCount;
  const FontButtonBinding* font;  // none on the Picture tab
  const ColourButtonBinding* colours;
  size_t colourCount;
  // The placement glyphs: the first glyph's button and the radio button it
  // stands beside (the next glyph beside the next radio); 0 for none.
  int firstGlyph = 0, firstGlyphRadio = 0;
};

constexpr int kPageTabCount = 5;
constexpr int kEventsTab = 2, kPictureTab = 3;
extern const PageTab kPageTabs[kPageTabCount];
