#include "app/toolbar_win32.h"

#include "res/main_ids.h"
#include "base/program_win32.h"
#include "app/theme_win32.h"
#include "app/tooltip_win32.h"

namespace {

// The buttons from left to right; a gap opens before the first of a group.
const struct {
  int command, tip;
  bool groupStart;
} kButtons[] = {{IDM_OPEN, IDS_TIP_OPEN, false},
                {IDM_SAVE, IDS_TIP_SAVE, false},
                {IDM_EDIT_YEAR_BUTTON, IDS_TIP_EDIT_YEAR, true},
                {IDM_EDIT_PAGE_BUTTON, IDS_TIP_EDIT_PAGE, false},
                {IDM_MANUAL, IDS_TIP_MANUAL, true},
                {IDM_SETUP, IDS_TIP_SETUP, false},
                {IDM_EXIT, IDS_TIP_EXIT, true}};
constexpr int kMargin = 1, kSpacing = 1, kGroupGap = 8;
constexpr UINT_PTR kTipTimer = 1;

WNDPROC g_buttonProc = nullptr;  // the BUTTON class's own procedure
int g_hot = 0;                   // the command of the button under the mouse

int TipFor(int command) {
  for (const auto& b : kButtons)
    if (b.command == command) return b.tip;
  return 0;
}

void SetHot(HWND bar, int command) {
  if (g_hot == command) return;
  const int previous = g_hot;
  g_hot = command;
  for (int id : {previous, command})
    if (id) InvalidateRect(GetDlgItem(bar, id), nullptr, FALSE);
}

void ShowTipFor(HWND bar, int command) {
  HWND button = GetDlgItem(bar, command);
  RECT r;
  POINT cursor;
  if (!button || !GetWindowRect(button, &r) || !GetCursorPos(&cursor)) return;
  ShowTip(GetAncestor(bar, GA_ROOT), StringTableText(TipFor(command)), {cursor.x, r.bottom + 4});
}

// The buttons tell the strip where the mouse is.
LRESULT CALLBACK ButtonProc(HWND button, UINT message, WPARAM wParam, LPARAM lParam) {
  HWND bar = GetParent(button);
  const int command = GetDlgCtrlID(button);
  switch (message) {
    case WM_MOUSEMOVE:
      if (g_hot != command) {
        TRACKMOUSEEVENT track{sizeof track, TME_LEAVE, button, 0};
        TrackMouseEvent(&track);
        // A tip already showing moves to the new button at once.
        const bool tipShowing = TipWindow() && IsWindowVisible(TipWindow());
        SetHot(bar, command);
        if (tipShowing) {
          ShowTipFor(bar, command);
        } else {
          SetTimer(bar, kTipTimer, kTipDelayMs, nullptr);
        }
      }
      break;
    case WM_MOUSELEAVE:
      if (g_hot == command) {
        SetHot(bar, 0);
        KillTimer(bar, kTipTimer);
        HideTip();
      }
      break;
    case WM_LBUTTONDOWN:
      KillTimer(bar, kTipTimer);
      HideTip();
      break;
  }
  return CallWindowProcA(g_buttonProc, button, message, wParam, lParam);
}

// The buttons fill the strip's height, which follows the display's dots per
// inch; so do the gaps between them.
void CreateButtons(HWND bar) {
  RECT client;
  GetClientRect(bar, &client);
  const int margin = ScaledForScreen(kMargin), side = client.bottom - 2 * margin;
  const HINSTANCE instance = reinterpret_cast<HINSTANCE>(GetWindowLongPtrA(bar, GWLP_HINSTANCE));
  int x = margin + 1;
  for (const auto& b : kButtons) {
    if (b.groupStart) x += ScaledForScreen(kGroupGap);
    HWND button = CreateWindowA("BUTTON", "", WS_CHILD | WS_VISIBLE | BS_OWNERDRAW, x, margin, side, side, bar,
                                reinterpret_cast<HMENU>(static_cast<INT_PTR>(b.command)), instance, nullptr);
    if (!button) continue;
    const LONG_PTR previous = SetWindowLongPtrA(button, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(ButtonProc));
    if (!g_buttonProc) g_buttonProc = reinterpret_cast<WNDPROC>(previous);
    x += side + ScaledForScreen(kSpacing);
  }
}

void DrawButton(const DRAWITEMSTRUCT& item) {
  const int state = ((item.itemState & ODS_SELECTED) ? THEME_PRESSED : 0) |
                    (static_cast<int>(item.CtlID) == g_hot ? THEME_HOT : 0);
  DrawToolbarButton(item.hDC, item.rcItem, static_cast<int>(item.CtlID), state);
}

LRESULT CALLBACK ToolbarProc(HWND bar, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_CREATE: CreateButtons(bar); return 0;
    case WM_ERASEBKGND: {
      RECT r;
      GetClientRect(bar, &r);
      DrawToolbarBackground(reinterpret_cast<HDC>(wParam), r);
      return 1;
    }
    case WM_DRAWITEM: DrawButton(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam)); return TRUE;
    case WM_COMMAND:
      if (HIWORD(wParam) == BN_CLICKED) {
        // The keyboard stays with the main window, as after a menu command.
        HWND parent = GetParent(bar);
        SetFocus(parent);
        PostMessageA(parent, WM_COMMAND, MAKEWPARAM(LOWORD(wParam), 0), 0);
      }
      return 0;
    case WM_TIMER:
      if (wParam == kTipTimer) {
        KillTimer(bar, kTipTimer);
        if (g_hot) ShowTipFor(bar, g_hot);
      }
      return 0;
    case WM_DESTROY:
      KillTimer(bar, kTipTimer);
      g_hot = 0;
      HideTip();
      return 0;
  }
  return DefWindowProcA(bar, message, wParam, lParam);
}

}  // namespace

bool RegisterToolbarClass(HINSTANCE instance, HBRUSH background) {
  WNDCLASSA bar{};
  bar.style = CS_HREDRAW | CS_VREDRAW | CS_SAVEBITS;
  bar.lpfnWndProc = ToolbarProc;
  bar.hInstance = instance;
  bar.hIcon = LoadIconA(instance, MAKEINTRESOURCEA(IDI_QUERNAL));
  bar.hCursor = LoadCursorA(nullptr, MAKEINTRESOURCEA(32512));  // IDC_ARROW
  bar.hbrBackground = background;
  bar.lpszClassName = kToolbarClass;
  return RegisterClassA(&bar) != 0;
}

HWND CreateToolbar(HWND parent, int width) {
  const HINSTANCE instance = reinterpret_cast<HINSTANCE>(GetWindowLongPtrA(parent, GWLP_HINSTANCE));
  return CreateWindowA(kToolbarClass, "", WS_CHILD | WS_VISIBLE | WS_DLGFRAME, 0, 0, width, ToolbarHeight(), parent,
                       nullptr, instance, nullptr);
}

void FitToolbar(HWND parent, int width) {
  HWND bar = FindWindowExA(parent, nullptr, kToolbarClass, nullptr);
  RECT r;
  if (bar && GetWindowRect(bar, &r)) MoveWindow(bar, 0, 0, width, r.bottom - r.top, TRUE);
}

int ToolbarBottom(HWND parent) {
  HWND bar = FindWindowExA(parent, nullptr, kToolbarClass, nullptr);
  RECT r;
  if (!bar || !GetWindowRect(bar, &r)) return 0;
  return r.bottom - r.top;
}
