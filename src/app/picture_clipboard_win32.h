// The picture clipboard: a page's picture goes out as a device-independent
// bitmap with its palette, and comes in from any program that put a DIB or
// a bitmap there.
#pragma once
#include <windows.h>

#include "base/geometry.h"
#include "base/global_block.h"

// Puts a copy of `dib` on the clipboard; false when the clipboard refuses.
bool CopyPictureToClipboard(HWND window, BlockHandle dib);
// A new Dib of the clipboard's picture, imported as a picture file would be
// (reduced to the import's longest side), or 0 when there is none or it
// cannot be read. A 32-bit bitmap with alpha or an embedded colour profile
// (CF_DIBV5) has its transparent parts laid over `background` and its
// colours converted to sRGB.
BlockHandle PictureFromClipboard(HWND window, Colour background);
bool ClipboardHasPicture();
