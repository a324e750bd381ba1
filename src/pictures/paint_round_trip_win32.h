// A picture's round trip through the external paint program: out as a plain
// BMP file, edited there, and back as a new picture once the program closes.
#pragma once
#include <windows.h>

#include "base/global_block.h"

// Writes `dib` to a BMP file of its own in the temporary folder, starts
// `program` on it (maximized when asked), waits for it to end while `owner`
// goes on painting but takes no input, and reads the file back. The new Dib,
// or 0 when any step fails (the caller keeps its picture and says so). The
// file is removed afterwards.
BlockHandle PaintRoundTrip(HWND owner, const char* program, BlockHandle dib, bool maximized);
