#include "pictures/page_picture_win32.h"

#include "base/program_win32.h"
#include "config/settings.h"
#include "pictures/image_files.h"
#include "pictures/picture_kind.h"
#include "res/picture_dialog_ids.h"
#include "res/string_ids.h"

namespace {

INT_PTR CALLBACK WarningProc(HWND box, UINT message, WPARAM wParam, LPARAM) {
  switch (message) {
    case WM_INITDIALOG:
      SendDlgItemMessageA(box, IDC_PALETTE_ICON, STM_SETICON,
                          reinterpret_cast<WPARAM>(LoadIconA(nullptr, MAKEINTRESOURCEA(32516))), 0);  // information
      SetDlgItemTextA(box, IDC_PALETTE_TEXT, StringTableText(IDS_PALETTE_WARNING).c_str());
      CheckDlgButton(box, IDC_PALETTE_AGAIN, BST_CHECKED);
      return TRUE;
    case WM_COMMAND:
      if (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL) {
        if (IsDlgButtonChecked(box, IDC_PALETTE_AGAIN) != BST_CHECKED) Settings.WarnPaletteColour = 0;
        EndDialog(box, IDOK);
      }
      return TRUE;
  }
  return FALSE;
}

}  // namespace

void WarnAboutPalette(HWND owner) {
  if (!Settings.WarnPaletteColour) return;
  DialogBoxParamA(GetModuleHandleA(nullptr), "PaletteWarningBox", owner, WarningProc, 0);
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
