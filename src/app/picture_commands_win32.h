// Pictures that come to the page shown other than through its sheet: Cut,
// Copy and Paste, and files dropped on the main window.
#pragma once
#include <windows.h>
#include <shellapi.h>

#include "base/global_block.h"

// The picture of the month page shown; 0 on the year and cover pages.
BlockHandle PagePicture();
// IDM_CUT, IDM_COPY or IDM_PASTE on the month page shown.
void ClipboardCommand(HWND window, int id);
// A calendar dropped on the window opens as File, Open opens it; a picture
// becomes the picture of the month page or the cover shown, as if chosen
// with "Select..."; the year page has none to take.
void FilesDropped(HWND window, HDROP drop);
