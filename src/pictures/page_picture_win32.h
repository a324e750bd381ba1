// A picture file becoming a page's picture, as "Select..." and a file
// dropped on the window make it: read, then the warning about palette
// pictures while the settings ask for it.
#pragma once
#include <windows.h>

#include "base/global_block.h"

// The picture in `path` as a new Dib, or 0 after message 105 when it cannot
// be read. A monochrome or palette picture brings the palette warning first
// (unless WarnPaletteColour is 0; its check box clears that setting).
BlockHandle LoadPagePicture(HWND owner, const char* path);
// The palette warning box alone.
void WarnAboutPalette(HWND owner);
