// A picture file becoming a page's picture, as "Select..." and a file
// dropped on the window make it: read, then the warning about palette
// pictures while the settings ask for it.
#pragma once
#include <windows.h>

#include "base/geometry.h"
#include "base/global_block.h"

// The picture in `path` imported as a new Dib for a page whose background is
// `background`, or 0 after a message when it cannot be read: message 105,
// or what is wrong when the import knows better (too large, out of memory).
// A monochrome or palette picture brings the palette warning first (unless
// WarnPaletteColour is 0; its check box clears that setting).
BlockHandle LoadPagePicture(HWND owner, const char* path, Colour background);
// The same for a file dropped on the window, read by its content: a file
// that none of the six formats' readers takes is read through Windows
// Imaging Component (TIFF; HEIC and WebP where Windows has their codecs),
// and one that is no picture at all says so.
BlockHandle LoadDroppedPicture(HWND owner, const char* path, Colour background);
// The palette warning box alone.
void WarnAboutPalette(HWND owner);
