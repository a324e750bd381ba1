#include "pictures/page_picture_win32.h"

#include "base/program_win32.h"
#include "config/settings.h"
#include "pictures/image_files.h"
#include "pictures/picture_kind.h"
#include "res/string_ids.h"

void WarnAboutPalette(HWND owner) {
  if (Settings.WarnPaletteColour &&
      !WarningWithCheckBox(owner, "PaletteWarningBox", MAKEINTRESOURCEA(32516), StringTableText(IDS_PALETTE_WARNING),
                           true))  // IDI_INFORMATION; unticked: no more warnings
    Settings.WarnPaletteColour = 0;
}

BlockHandle LoadPagePicture(HWND owner, const char* path) {
  BlockHandle picture = ReadImageFile(path, nullptr);
  if (!picture) {
    ShowMessage(owner, IDS_IMAGE_LOAD_FAILED);
    return 0;
  }
  if (WantsPaletteWarning(ClassifyPicture(picture))) WarnAboutPalette(owner);
  return picture;
}
