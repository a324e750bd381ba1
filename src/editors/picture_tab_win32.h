// The page sheet's Picture tab: which of its controls a picture makes
// usable, "Select...", "Paint" and the preview of the picture.
#pragma once
#include <windows.h>

#include "calendar/records.h"

// Checks the stored placement again (without clearing the others), enables
// "Show picture" only for a page with a picture, and the picture's own
// controls only while it is shown; repaints the preview.
void ApplyPictureState(HWND tab, const MonthPage& page);
// WM_DRAWITEM of the preview: the picture as large as fits, centred, framed
// in the button-shadow colour; nothing while disabled or without a picture.
void DrawPicturePreview(const DRAWITEMSTRUCT* item, BlockHandle picture);
// The tab's own commands (clicks on the three check boxes, "Select...",
// "Paint"); true when `command` was one of them.
bool PictureTabCommand(HWND tab, int command, MonthPage* page);
