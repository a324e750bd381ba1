#include "editors/theme_box_win32.h"

#include <string>

#include "base/program_win32.h"
#include "base/text.h"
#include "editors/editor_controls_win32.h"
#include "res/setup_sheet_ids.h"

namespace {

struct Choice {
  char* theme;
  size_t size;
};

void ListThemes(HWND box, const char* current) {
  WIN32_FIND_DATAA found;
  HANDLE search = FindFirstFileA((ProgramFolder() + "THEME_*.dll").c_str(), &found);
  if (search != INVALID_HANDLE_VALUE) {
    do SendDlgItemMessageA(box, IDC_THEME_LIST, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(found.cFileName));
    while (FindNextFileA(search, &found));
    FindClose(search);
  }
  const LRESULT at = SendDlgItemMessageA(box, IDC_THEME_LIST, LB_FINDSTRINGEXACT, static_cast<WPARAM>(-1),
                                         reinterpret_cast<LPARAM>(current));
  SendDlgItemMessageA(box, IDC_THEME_LIST, LB_SETCURSEL, at == LB_ERR ? 0 : at, 0);
}

INT_PTR CALLBACK ThemeBoxProc(HWND box, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG:
      SetWindowLongPtrA(box, DWLP_USER, lParam);
      ListThemes(box, reinterpret_cast<const Choice*>(lParam)->theme);
      return TRUE;
    case WM_COMMAND: {
      const bool chosen = LOWORD(wParam) == IDOK ||
                          (LOWORD(wParam) == IDC_THEME_LIST && HIWORD(wParam) == LBN_DBLCLK);
      if (chosen) {
        const LRESULT at = SendDlgItemMessageA(box, IDC_THEME_LIST, LB_GETCURSEL, 0, 0);
        char name[MAX_PATH] = "";
        if (at == LB_ERR || SendDlgItemMessageA(box, IDC_THEME_LIST, LB_GETTEXTLEN, at, 0) >= MAX_PATH) {
          EndDialog(box, IDCANCEL);
          return TRUE;
        }
        SendDlgItemMessageA(box, IDC_THEME_LIST, LB_GETTEXT, at, reinterpret_cast<LPARAM>(name));
        const auto* choice = reinterpret_cast<const Choice*>(GetWindowLongPtrA(box, DWLP_USER));
        CopyText(choice->theme, choice->size, name);
        EndDialog(box, IDOK);
        return TRUE;
      }
      if (LOWORD(wParam) == IDCANCEL) {
        EndDialog(box, IDCANCEL);
        return TRUE;
      }
      break;
    }
    case WM_CTLCOLORDLG:
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLORBTN: return DialogColours(message, wParam);
  }
  return FALSE;
}

}  // namespace

bool ChooseTheme(HWND owner, char* theme, size_t size) {
  Choice choice{theme, size};
  return DialogBoxParamA(GetModuleHandleA(nullptr), "ThemeBox", owner, ThemeBoxProc, reinterpret_cast<LPARAM>(&choice)) ==
         IDOK;
}
