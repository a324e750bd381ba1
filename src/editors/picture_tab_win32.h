// The picture of a page or cover tab on its window: "Crop...", the preview
// and the print note.
#pragma once
#include <windows.h>

#include "base/global_block.h"
#include "editors/picture_tab.h"

// The tab's picture rules (see ApplyPictureRules) on its window; repaints
// the preview and the print note.
void ApplyPictureState(HWND tab, const void* record, const SheetTab& sheet);
// The preview and the print note repainted for the picture as it is now.
void RepaintPicture(HWND tab, const void* record, const SheetTab& sheet);
// WM_DRAWITEM of the preview: the picture as large as fits, centred, framed
// in the button-shadow colour; nothing while disabled or without a picture.
void DrawPicturePreview(const DRAWITEMSTRUCT* item, BlockHandle picture);
// The picture's resolution on the current printer's page (on A4 without a
// printer), in the warning colour below the resolution that prints sharp.
void ShowPrintNote(HWND tab, const void* record, const SheetTab& sheet);
void DrawPrintNote(const DRAWITEMSTRUCT* item);
// "Crop..."; true when `command` was it.
bool PictureTabCommand(HWND tab, int command, void* record, const SheetTab& sheet);
