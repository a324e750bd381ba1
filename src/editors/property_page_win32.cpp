#include "editors/property_page_win32.h"

#include <commctrl.h>
#include <prsht.h>

#include "base/manual_win32.h"
#include "editors/dialog_controls_win32.h"
#include "editors/editor_controls_win32.h"

namespace {

PageContext* Context(HWND page) { return reinterpret_cast<PageContext*>(GetWindowLongPtrA(page, GWLP_USERDATA)); }

bool Notified(HWND page, PageContext* c, const NMHDR& note) {
  switch (note.code) {
    case PSN_SETACTIVE:
      if (c->lastPage) *c->lastPage = c->index;
      SetWindowLongPtrA(page, DWLP_MSGRESULT, 0);
      return true;
    case PSN_APPLY:
      if (c->edited) *c->edited = 1;
      SetWindowLongPtrA(page, DWLP_MSGRESULT, PSNRET_NOERROR);
      return true;
  }
  return false;
}

}  // namespace

INT_PTR CALLBACK BoundPageProc(HWND page, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_INITDIALOG) {
    auto* c = reinterpret_cast<PageContext*>(reinterpret_cast<const PROPSHEETPAGEA*>(lParam)->lParam);
    SetWindowLongPtrA(page, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(c));
    Win32DialogControls controls(page);
    LoadControls(c->tab->table, c->tab->count, c->record, controls);
    if (c->tab->quirks) c->tab->quirks(page, message, wParam, lParam, c);
    return TRUE;
  }
  PageContext* c = Context(page);
  if (!c) return FALSE;
  if (c->tab->quirks && c->tab->quirks(page, message, wParam, lParam, c)) return TRUE;
  switch (message) {
    case WM_NOTIFY: return Notified(page, c, *reinterpret_cast<const NMHDR*>(lParam)) ? TRUE : FALSE;
    case WM_HELP: OpenManual(page, c->tab->helpTopic); return TRUE;
    case WM_ERASEBKGND:
    case WM_CTLCOLORDLG:
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLORBTN: return TabFace(page, message, wParam);
    case WM_DESTROY: {
      Win32DialogControls controls(page);
      ReadControls(c->tab->table, c->tab->count, c->record, controls);
      SetWindowLongPtrA(page, GWLP_USERDATA, 0);
      return FALSE;
    }
  }
  return FALSE;
}
