// The dialog driver's plain window functions, apart from it and from
// GoogleTest: the end-to-end tests and the shell-open helper use them on the
// program's windows.
#include "dialog_driver.h"

#include <commctrl.h>
#include <prsht.h>

void Press(HWND dialog, int id) {
  PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), reinterpret_cast<LPARAM>(GetDlgItem(dialog, id)));
}

void SetCheck(HWND dialog, int id, bool checked) {
  SendDlgItemMessageA(dialog, id, BM_SETCHECK, checked ? BST_CHECKED : BST_UNCHECKED, 0);
  Press(dialog, id);
}

// WM_GETTEXT reaches the controls of another process's windows too.
std::string TextOf(HWND window) {
  char text[2048] = "";
  SendMessageA(window, WM_GETTEXT, sizeof text, reinterpret_cast<LPARAM>(text));
  return text;
}

std::string ItemText(HWND dialog, int id) { return TextOf(GetDlgItem(dialog, id)); }

// A message box shows its text in a static control numbered 0xFFFF.
std::string MessageText(HWND box) { return ItemText(box, 0xFFFF); }

std::vector<std::string> Entries(HWND dialog, int id) {
  char kind[32] = "";
  GetClassNameA(GetDlgItem(dialog, id), kind, sizeof kind);
  const bool combo = lstrcmpiA(kind, "ComboBox") == 0;
  const int count = static_cast<int>(SendDlgItemMessageA(dialog, id, combo ? CB_GETCOUNT : LB_GETCOUNT, 0, 0));
  std::vector<std::string> entries;
  for (int i = 0; i < count; ++i) {
    char text[300] = "";
    SendDlgItemMessageA(dialog, id, combo ? CB_GETLBTEXT : LB_GETTEXT, i, reinterpret_cast<LPARAM>(text));
    entries.push_back(text);
  }
  return entries;
}

HWND CurrentTab(HWND sheet) { return reinterpret_cast<HWND>(SendMessageA(sheet, PSM_GETCURRENTPAGEHWND, 0, 0)); }
bool Checked(HWND dialog, int id) { return IsDlgButtonChecked(dialog, id) == BST_CHECKED; }
bool Enabled(HWND dialog, int id) { return IsWindowEnabled(GetDlgItem(dialog, id)) != FALSE; }

void ChooseFile(HWND dialog, const std::string& path) {
  HWND name = GetDlgItem(dialog, 0x480);        // the name field
  if (!name) name = GetDlgItem(dialog, 0x47C);  // or the combo box holding it
  SendMessageA(name, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(path.c_str()));
  Press(dialog, IDOK);
}
