// A picture tab's picture laid out on a printer's page as the tab's
// controls show it: the box to crop to and the resolution it prints at.
#pragma once
#include "editors/dialog_controls.h"
#include "editors/sheet_tab.h"
#include "render/picture_box.h"

// The tab's numbers and check boxes reach the record only when the tab
// closes, so they are read into a copy of it first. False without a picture.
bool TabPictureOnPage(const SheetTab& tab, const void* record, const DialogControls& controls, const Rect& page,
                      PagePicture* out);
