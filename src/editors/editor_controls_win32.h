// The owner-drawn and font-bearing controls every editor tab has: the font
// sample beside a font button and the placement
// glyphs beside the left / centre / right radio buttons.
#pragma once
#include <windows.h>

// Resource 6300: the left, centre and right glyphs above their masks.
constexpr int kAlignmentGlyphs = 6300;

// WM_CTLCOLORDLG, WM_CTLCOLORSTATIC and WM_CTLCOLORBTN of every editor and
// chooser: one face colour for the dialog and its statics and buttons, and
// the system's button text on it; 0 (not handled) for any other message.
INT_PTR DialogColours(UINT message, WPARAM dc);
// The same for a property sheet's tab, whose background is erased in that
// face colour too (not the theme's tab texture, which the statics would not
// match); 0 for any other message.
INT_PTR TabFace(HWND tab, UINT message, WPARAM wParam);

// The sample static `id` shows `face` in that face at 24 pixels with the
// weight and italic given; the font it had before (in `held`) is deleted.
void SetFontSample(HWND dialog, int id, const char* face, int weight, int italic, HFONT* held);
// WM_DRAWITEM of a placement glyph: button `firstId` shows the left glyph,
// the next the centre one, the next the right one; embossed when disabled.
void DrawPlacementGlyph(const DRAWITEMSTRUCT* item, int firstId);
