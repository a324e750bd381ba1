#include "app/driver_box_win32.h"

#include "res/main_ids.h"
#include "config/settings.h"

namespace {

INT_PTR CALLBACK DriverBoxProc(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
  switch (message) {
    case WM_INITDIALOG:
      SendDlgItemMessageA(dialog, IDC_DRIVER_ICON, STM_SETICON,
                          reinterpret_cast<WPARAM>(LoadIconA(nullptr, MAKEINTRESOURCEA(32515))), 0);  // IDI_WARNING
      SetFocus(GetDlgItem(dialog, IDOK));  // Enter reads the warning away
      return FALSE;
    case WM_COMMAND:
      if (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL) {
        // Closing the box either way keeps the check box's word.
        if (IsDlgButtonChecked(dialog, IDC_DRIVER_DONT_SHOW) == BST_CHECKED) Settings.ShowDriverMessage = 0;
        EndDialog(dialog, LOWORD(wParam));
        return TRUE;
      }
      break;
  }
  return FALSE;
}

}  // namespace

void ShowDriverWarning(HWND owner) {
  DialogBoxParamA(GetModuleHandleA(nullptr), "ChangeDriverBox", owner, DriverBoxProc, 0);
}

void WarnAboutColourDepth(HWND owner, int colourBits) {
  if (colourBits < 9 && Settings.ShowDriverMessage) ShowDriverWarning(owner);
}
