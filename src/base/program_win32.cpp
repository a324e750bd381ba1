#include "base/program_win32.h"

std::string ProgramFolder() {
  char path[MAX_PATH];
  const DWORD n = GetModuleFileNameA(nullptr, path, sizeof path);
  const std::string file(path, n < sizeof path ? n : 0);
  return file.substr(0, file.find_last_of('\\') + 1);
}

std::string StringTableText(UINT id) {
  char text[1024];
  if (LoadStringA(GetModuleHandleA(nullptr), id, text, sizeof text) > 0) return text;
  return "String table error - this application may be damaged";
}

int ShowMessage(HWND owner, UINT id, UINT flags) {
  return MessageBoxA(owner, StringTableText(id).c_str(), "Message", flags);
}

namespace {

struct Warning {
  LPCSTR icon;
  const std::string* text;
  bool checked;
};

INT_PTR CALLBACK WarningProc(HWND box, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG: {
      const auto* w = reinterpret_cast<Warning*>(lParam);
      SetWindowLongPtrA(box, DWLP_USER, lParam);
      SendDlgItemMessageA(box, 101, STM_SETICON, reinterpret_cast<WPARAM>(LoadIconA(nullptr, w->icon)), 0);
      if (!w->text->empty()) SetDlgItemTextA(box, 102, w->text->c_str());
      CheckDlgButton(box, 103, w->checked ? BST_CHECKED : BST_UNCHECKED);
      SetFocus(GetDlgItem(box, IDOK));  // Enter reads the warning away
      return FALSE;
    }
    case WM_COMMAND:
      if (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL) {
        reinterpret_cast<Warning*>(GetWindowLongPtrA(box, DWLP_USER))->checked =
            IsDlgButtonChecked(box, 103) == BST_CHECKED;
        EndDialog(box, LOWORD(wParam));
        return TRUE;
      }
      break;
  }
  return FALSE;
}

}  // namespace

bool WarningWithCheckBox(HWND owner, const char* name, LPCSTR icon, const std::string& text, bool checked,
                         INT_PTR* pressed) {
  Warning warning{icon, &text, checked};
  const INT_PTR button =
      DialogBoxParamA(GetModuleHandleA(nullptr), name, owner, WarningProc, reinterpret_cast<LPARAM>(&warning));
  if (pressed) *pressed = button;
  return warning.checked;
}

int ScreenDpi() {
  HDC screen = GetDC(nullptr);
  const int dpi = GetDeviceCaps(screen, LOGPIXELSY);
  ReleaseDC(nullptr, screen);
  return dpi > 0 ? dpi : 96;
}

int ScaledForScreen(int pixels) { return MulDiv(pixels, ScreenDpi(), 96); }
