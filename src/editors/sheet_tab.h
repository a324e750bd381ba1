// A tab of the page or year sheet as data: the controls its table binds,
// its font buttons with their samples, its colour buttons, its placement
// glyphs and its picture. The Win32 side gives every tab the same
// behaviour from this description.
#pragma once
#include <cstddef>
#include <cstdint>

#include "base/geometry.h"
#include "editors/control_binding.h"

struct Choosers;
struct PagePicture;

constexpr size_t kNoField = SIZE_MAX;

// A font button, its sample static and the fields it edits (offsets into
// the record; `size` may be kNoField), with the size range of the font box
// (0..0: no size at all).
struct FontButtonBinding {
  int button, sample;
  size_t face, weight, italic, size;
  int minimum = 4, maximum = 100;
};
// A colour button and its COLORREF field.
struct ColourButtonBinding {
  int button;
  size_t colour;
};
// A tab's picture: its block field, the radio group of its placement (the
// number its row in the tab's controls binds), whether a picture chosen with
// "Select..." ticks "Show picture" (and a failed one clears it), its
// "Paint" button, and the colour field of the background its transparent
// parts are laid over; the record's size, and how the renderer lays the
// record's picture out on a page. The other picture controls have the same
// numbers on every tab that has a picture.
struct PictureBinding {
  size_t picture;
  int placement;
  bool showChosen;
  int paint;
  size_t background;
  size_t recordSize;
  bool (*onPage)(const Rect& page, const void* record, PagePicture* out);
};

struct SheetTab {
  const char* templateName;  // "PagePropertyOne" ...
  const char* caption;       // the tab's caption in the sheet
  const ControlBinding* controls;
  size_t controlCount;
  const FontButtonBinding* fonts;
  size_t fontCount;
  const ColourButtonBinding* colours;
  size_t colourCount;
  // The placement glyphs: the first glyph's button and the radio button it
  // stands beside (the next glyph beside the next radio); 0 for none.
  int firstGlyph = 0, firstGlyphRadio = 0;
  const PictureBinding* picture = nullptr;
};

#define QUERNAL_COUNT(a) (sizeof(a) / sizeof((a)[0]))

// What a click on a tab's button leaves to its window once the record and
// the controls have taken the answer of the chooser it opened.
struct TabClick {
  enum Then {
    kNotMine,        // no button the tab's description names
    kDone,           // nothing more: a chooser cancelled, a colour kept
    kRepaintButton,  // the colour button shows its new colour
    kReset,          // the font samples rebuilt, the tab's own rule applied
    kNewPicture,     // the preview and the print note show the new picture
  } then;
  int message = 0;  // a text of the string table to show the user, or 0
};

// A click on button `id` of `tab` over the working copy `record`: the font
// box, a colour, a placement glyph, and the picture's check boxes,
// "Select..." and "Paint". After the font box and after a click on a
// picture's check box the tab is reset (see ResetTabControls).
TabClick ClickTabButton(const SheetTab& tab, int id, void* record, DialogControls& controls, const Choosers& choosers);
// The radios checked again from the record (without clearing the others),
// the check boxes that the record sets or clears reset, and the picture's
// rules applied again: clicks since the tab opened are lost, on purpose.
void ResetTabControls(const SheetTab& tab, const void* record, DialogControls& controls);
