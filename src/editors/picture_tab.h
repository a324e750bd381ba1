// The picture of a page or cover tab: which of its controls a picture,
// "Show picture", the drop shadow and the frame make usable.
#pragma once
#include "editors/dialog_controls.h"
#include "editors/sheet_tab.h"
#include "res/picture_tab_ids.h"

// The numbers whose change moves the picture's box on the page.
inline bool MovesPictureBox(int id) {
  return id == IDC_PICTURE_SHADOW_OFFSET || id == IDC_PICTURE_EXTERIOR || id == IDC_PICTURE_GUTTER;
}

inline bool IsPictureCheckBox(int id) {
  return id == IDC_PICTURE_SHOW || id == IDC_PICTURE_SHOW_FRAME || id == IDC_PICTURE_SHADOW;
}

// Checks the stored placement again (without clearing the others), enables
// "Show picture" only when the record has a picture, and the picture's own
// controls only while it is shown.
void ApplyPictureRules(const SheetTab& tab, const void* record, DialogControls& controls);
// "Select..." (the picture-open dialog in the folder used last, then the
// file read), "Paint" and a click on "Show picture", "Show frame" or "Drop
// shadow"; kNotMine for any other button.
TabClick ClickPictureButton(const SheetTab& tab, int id, void* record, DialogControls& controls,
                            const Choosers& choosers);
