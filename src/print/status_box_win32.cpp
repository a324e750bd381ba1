#include "print/status_box_win32.h"

#include <cstdio>

#include "print/progress_bar.h"

namespace {

constexpr int kTextId = 101, kBarId = 102;
HWND g_box = nullptr;

void FillWith(HDC dc, RECT r, int systemColour) {
  HBRUSH brush = CreateSolidBrush(GetSysColor(systemColour));
  FillRect(dc, &r, brush);
  DeleteObject(brush);
}

// The shadow-coloured part on the left is the work done.
void DrawBar(const DRAWITEMSTRUCT* item) {
  char text[64] = "";
  GetWindowTextA(item->hwndItem, text, sizeof text);
  RECT r = item->rcItem;
  int doneRight;
  if (!ProgressDoneRight(text, r.right, &doneRight)) return FillWith(item->hDC, r, COLOR_3DLIGHT);
  FillWith(item->hDC, r, COLOR_BTNSHADOW);
  r.left = doneRight;
  FillWith(item->hDC, r, COLOR_3DLIGHT);
}

INT_PTR CALLBACK StatusBoxProc(HWND box, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG:
      SetDlgItemTextA(box, kTextId, reinterpret_cast<const char*>(lParam));
      return TRUE;
    case WM_DRAWITEM:
      if (wParam == kBarId) DrawBar(reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
      return TRUE;
    case WM_COMMAND:
      if (LOWORD(wParam) == IDOK) ClosePrintStatus();
      return TRUE;
  }
  return FALSE;
}

}  // namespace

void ShowPrintStatus(HWND owner, const char* text) {
  ClosePrintStatus();
  g_box = CreateDialogParamA(GetModuleHandleA(nullptr), "STATUSBOX", owner, StatusBoxProc,
                             reinterpret_cast<LPARAM>(text));
  if (g_box) UpdateWindow(g_box);
}

void UpdatePrintStatus(int total, int current) {
  if (!g_box) return;
  char text[32];
  std::snprintf(text, sizeof text, "%d,%d", total, current);
  HWND bar = GetDlgItem(g_box, kBarId);
  SetWindowTextA(bar, text);
  InvalidateRect(bar, nullptr, FALSE);
  // The work goes on without a message loop: paint now.
  UpdateWindow(bar);
}

void ClosePrintStatus() {
  if (g_box) DestroyWindow(g_box);
  g_box = nullptr;
}

