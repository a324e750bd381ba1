// The picture of a page or cover tab: which of its controls a picture
// makes usable, "Select...", "Paint" and the preview.
#pragma once
#include <windows.h>

#include "base/global_block.h"
#include "editors/sheet_tab.h"

// The numbers every picture tab gives its picture's controls.
constexpr int kPictureShow = 137, kPictureSelect = 138, kPictureSample = 139, kPictureFrame = 141,
              kPictureShowFrame = 142, kPictureShadow = 148, kPictureShadowOffset = 149, kPictureExterior = 150,
              kPictureGutter = 163, kPictureSoftness = 167, kPictureCrop = 168, kPicturePrint = 169;
// The numbers whose change moves the picture's box on the page.
inline bool MovesPictureBox(int id) { return id == kPictureShadowOffset || id == kPictureExterior || id == kPictureGutter; }

inline bool IsPictureCheckBox(int id) { return id == kPictureShow || id == kPictureShowFrame || id == kPictureShadow; }

// Checks the stored placement again (without clearing the others), enables
// "Show picture" only when there is a picture, and the picture's own
// controls only while it is shown; repaints the preview.
void ApplyPictureState(HWND tab, const void* record, const SheetTab& sheet);
// WM_DRAWITEM of the preview: the picture as large as fits, centred, framed
// in the button-shadow colour; nothing while disabled or without a picture.
void DrawPicturePreview(const DRAWITEMSTRUCT* item, BlockHandle picture);
// The picture's resolution on the current printer's page (on A4 without a
// printer), in the warning colour below the resolution that prints sharp.
void ShowPrintNote(HWND tab, const void* record, const SheetTab& sheet);
void DrawPrintNote(const DRAWITEMSTRUCT* item);
// "Select...", "Crop..." and "Paint"; true when `command` was one of them.
bool PictureTabCommand(HWND tab, int command, void* record, const SheetTab& sheet);
