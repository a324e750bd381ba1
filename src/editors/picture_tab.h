// The picture of a page or cover tab: its controls' numbers, and which of
// them a picture, "Show picture", the drop shadow and the frame make usable.
#pragma once
#include "editors/dialog_controls.h"
#include "editors/sheet_tab.h"

// The numbers every picture tab gives its picture's controls.
constexpr int kPictureShow = 137, kPictureSelect = 138, kPictureSample = 139, kPictureFrame = 141,
              kPictureShowFrame = 142, kPictureShadow = 148, kPictureShadowOffset = 149, kPictureExterior = 150,
              kPictureGutter = 163, kPictureSoftness = 167, kPictureCrop = 168, kPicturePrint = 169;
// The numbers whose change moves the picture's box on the page.
inline bool MovesPictureBox(int id) { return id == kPictureShadowOffset || id == kPictureExterior || id == kPictureGutter; }

inline bool IsPictureCheckBox(int id) { return id == kPictureShow || id == kPictureShowFrame || id == kPictureShadow; }

// Checks the stored placement again (without clearing the others), enables
// "Show picture" only when the record has a picture, and the picture's own
// controls only while it is shown.
void ApplyPictureRules(const SheetTab& tab, const void* record, DialogControls& controls);
