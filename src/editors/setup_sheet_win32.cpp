#include "editors/setup_sheet_win32.h"

#include <commctrl.h>
#include <prsht.h>

#include <vector>

#include "base/manual_win32.h"
#include "base/text.h"
#include "config/settings.h"
#include "editors/dialog_controls_win32.h"
#include "editors/editor_controls_win32.h"
#include "editors/setup_bindings.h"
#include "editors/theme_box_win32.h"
#include "res/setup_sheet_ids.h"

namespace {

const std::vector<ControlBinding>& Bindings() {
  static const std::vector<ControlBinding> bindings = SetupBindings();
  return bindings;
}

// What the sheet holds until OK, shared by its tabs through lParam.
struct SetupState {
  bool applied = false;
  char theme[sizeof Settings.ThemeCurrent];  // the theme chosen, or the one in use
};

// Both tabs: loaded from the settings when first shown, read back only on
// OK, as is the theme chosen.
INT_PTR CALLBACK SetupTabProc(HWND tab, UINT message, WPARAM wParam, LPARAM lParam) {
  auto* state = reinterpret_cast<SetupState*>(GetWindowLongPtrA(tab, DWLP_USER));
  switch (message) {
    case WM_INITDIALOG: {
      SetWindowLongPtrA(tab, DWLP_USER, reinterpret_cast<const PROPSHEETPAGEA*>(lParam)->lParam);
      Win32DialogControls controls(tab);
      LoadControls(Bindings().data(), Bindings().size(), &Settings, controls);
      return TRUE;
    }
    case WM_NOTIFY:
      if (reinterpret_cast<const NMHDR*>(lParam)->code == PSN_APPLY) {
        Win32DialogControls controls(tab);
        ReadControls(Bindings().data(), Bindings().size(), &Settings, controls);
        CopyText(Settings.ThemeCurrent, sizeof Settings.ThemeCurrent, state->theme);
        state->applied = true;
        SetWindowLongPtrA(tab, DWLP_MSGRESULT, PSNRET_NOERROR);
        return TRUE;
      }
      return FALSE;
    case WM_COMMAND:
      if (LOWORD(wParam) == IDC_SETUP_THEME && HIWORD(wParam) == BN_CLICKED) {
        ChooseTheme(tab, state->theme, sizeof state->theme);
        return TRUE;
      }
      return FALSE;  // no option has a browse button
    case WM_HELP: OpenManual(tab, "SETUP"); return TRUE;
    case WM_ERASEBKGND:
    case WM_CTLCOLORDLG:
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLORBTN: return TabFace(tab, message, wParam);
  }
  return FALSE;
}

}  // namespace

bool EditSetup(HWND owner) {
  SetupState state;
  CopyText(state.theme, sizeof state.theme, Settings.ThemeCurrent);
  const char* templates[2] = {"SetupPropertyOne", "SetupPropertyTwo"};
  PROPSHEETPAGEA tabs[2]{};
  for (int i = 0; i < 2; ++i) {
    tabs[i].dwSize = sizeof tabs[i];
    tabs[i].hInstance = GetModuleHandleA(nullptr);
    tabs[i].pszTemplate = templates[i];
    tabs[i].pfnDlgProc = SetupTabProc;
    tabs[i].lParam = reinterpret_cast<LPARAM>(&state);
  }
  PROPSHEETHEADERA sheet{};
  sheet.dwSize = sizeof sheet;
  sheet.dwFlags = PSH_PROPSHEETPAGE | PSH_NOAPPLYNOW;
  sheet.hwndParent = owner;
  sheet.hInstance = GetModuleHandleA(nullptr);
  sheet.pszCaption = "Setup";
  sheet.nPages = 2;
  sheet.ppsp = tabs;
  PropertySheetA(&sheet);
  return state.applied;
}
