#include "app/about_box_win32.h"

#include "res/main_ids.h"

namespace {

INT_PTR CALLBACK AboutBoxProc(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
  switch (message) {
    case WM_INITDIALOG:
      SendDlgItemMessageA(dialog, IDC_ABOUT_ICON, STM_SETICON,
                          reinterpret_cast<WPARAM>(LoadIconA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(IDI_QUERNAL))),
                          0);
      return TRUE;
    case WM_COMMAND:
      if (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL) {
        EndDialog(dialog, IDOK);
        return TRUE;
      }
      break;
  }
  return FALSE;
}

}  // namespace

void ShowAboutBox(HWND owner) { DialogBoxParamA(GetModuleHandleA(nullptr), "AboutBox", owner, AboutBoxProc, 0); }
