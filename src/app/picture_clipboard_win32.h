// The picture clipboard: a page's picture goes out as a device-independent
// bitmap with its palette, and comes in from any program that put a DIB or
// a bitmap there.
#pragma once
#include <windows.h>

#include "base/global_block.h"

// Puts a copy of `dib` on the clipboard; false when the clipboard refuses.
bool CopyPictureToClipboard(HWND window, BlockHandle dib);
// A new Dib of the clipboard's picture, or 0 when there is none or it cannot
// be read.
BlockHandle PictureFromClipboard(HWND window);
bool ClipboardHasPicture();
