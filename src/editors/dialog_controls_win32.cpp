#include "editors/dialog_controls_win32.h"

#include <commctrl.h>

#include <vector>

bool Win32DialogControls::Exists(int id) const { return GetDlgItem(dialog_, id) != nullptr; }

std::string Win32DialogControls::Text(int id) const {
  HWND item = GetDlgItem(dialog_, id);
  std::vector<char> text(static_cast<size_t>(GetWindowTextLengthA(item)) + 1);
  const int n = GetWindowTextA(item, text.data(), static_cast<int>(text.size()));
  return std::string(text.data(), n > 0 ? static_cast<size_t>(n) : 0);
}

void Win32DialogControls::SetText(int id, const std::string& text) { SetDlgItemTextA(dialog_, id, text.c_str()); }

uint32_t Win32DialogControls::Number(int id) const { return GetDlgItemInt(dialog_, id, nullptr, FALSE); }

void Win32DialogControls::SetNumber(int id, uint32_t value) { SetDlgItemInt(dialog_, id, value, FALSE); }

bool Win32DialogControls::Checked(int id) const { return IsDlgButtonChecked(dialog_, id) == BST_CHECKED; }

void Win32DialogControls::SetChecked(int id, bool checked) {
  CheckDlgButton(dialog_, id, checked ? BST_CHECKED : BST_UNCHECKED);
}

void Win32DialogControls::Enable(int id, bool enabled) { EnableWindow(GetDlgItem(dialog_, id), enabled); }

void Win32DialogControls::LimitText(int id, int characters) {
  SendDlgItemMessageA(dialog_, id, EM_LIMITTEXT, static_cast<WPARAM>(characters), 0);
}

// The up-down takes its range as the maximum and the minimum packed in one
// long.
void Win32DialogControls::SetRange(int id, int minimum, int maximum) {
  SendDlgItemMessageA(dialog_, id, UDM_SETRANGE, 0, MAKELPARAM(maximum, minimum));
}

void Win32DialogControls::SetPosition(int id, int position) {
  SendDlgItemMessageA(dialog_, id, UDM_SETPOS, 0, MAKELPARAM(position, 0));
}
