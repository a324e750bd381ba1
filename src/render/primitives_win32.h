// The drawing routines that only the Windows program has: logical palettes
// from colour triplets and the two owner-drawn button faces of the property
// sheets.
#pragma once
#include <windows.h>

#include <cstdint>

#include "base/global_block.h"

// A realised palette and what it replaced; ReleasePalette undoes MakePalette.
struct PaletteHolder {
  HPALETTE palette;
  HPALETTE previous;   // selected into the device context before `palette`
  LOGPALETTE* copy;    // what `palette` was made from
};

// Builds a logical palette from red, green, blue triplets, selects it into
// `dc` (as a foreground palette) and realises it. 2..16 colours make 16
// entries and 17..256 make 256, read as consecutive triplets, so `triplets`
// must hold 256 of them. More than 256 colours leave the holder untouched.
// Returns 0 when memory runs out, else 1.
int MakePalette(HDC dc, PaletteHolder* holder, const uint8_t* triplets, int count);
// Selects the previous palette back, deletes the palette and the copy, and
// clears the holder.
void ReleasePalette(HDC dc, PaletteHolder* holder);

// WM_DRAWITEM of a colour button: the swatch in `colour` (the button face
// when disabled) inside a raised edge, sunken while pressed.
void DrawColourSwatchButton(const DRAWITEMSTRUCT* item, COLORREF colour);
// WM_DRAWITEM of a bitmap button. `bitmapName` holds a row of square images
// (the side is half the bitmap's height) above their masks, which start one
// pixel below the images; the image of `buttonIndex` is the one at column
// buttonIndex - firstIndex. Disabled buttons show the mask in the button
// shadow colour.
void DrawBitmapButton(const DRAWITEMSTRUCT* item, HINSTANCE instance, LPCSTR bitmapName, int firstIndex,
                      int buttonIndex);

// A BITMAPINFO that GDI reads the way the Dib is stored: a plain 40-byte
// header whatever size the stored one has, and a colour table of 2^bits
// entries (GDI would size it by biClrUsed, which the Dib does not follow).
struct DibInfo {
  BITMAPINFOHEADER header;
  RGBQUAD colours[256];
};
// Fills `info` from the locked Dib and returns its pixel rows, or nullptr
// when the block is not a Dib this program draws.
const void* ReadDib(BlockHandle dib, const BlockLock& lock, DibInfo* info);
