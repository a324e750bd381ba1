#include "app/tooltip_win32.h"

namespace {

HWND g_tip = nullptr;
HINSTANCE g_instance = nullptr;  // the module that registered the class
constexpr int kPadX = 4, kPadY = 2;

HFONT TipFont() { return static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT)); }

void Paint(HWND window) {
  PAINTSTRUCT ps;
  HDC dc = BeginPaint(window, &ps);
  RECT r;
  GetClientRect(window, &r);
  HBRUSH back = CreateSolidBrush(GetSysColor(COLOR_INFOBK));
  FillRect(dc, &r, back);
  DeleteObject(back);
  char text[256] = "";
  GetWindowTextA(window, text, sizeof text);
  HGDIOBJ oldFont = SelectObject(dc, TipFont());
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, GetSysColor(COLOR_INFOTEXT));
  InflateRect(&r, -kPadX, -kPadY);
  DrawTextA(dc, text, -1, &r, DT_SINGLELINE | DT_NOPREFIX | DT_LEFT | DT_VCENTER | DT_NOCLIP);
  SelectObject(dc, oldFont);
  EndPaint(window, &ps);
}

LRESULT CALLBACK TipProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_PAINT: Paint(window); return 0;
    case WM_MOUSEACTIVATE: return MA_NOACTIVATE;
    case WM_NCHITTEST: return HTTRANSPARENT;  // the mouse belongs to what lies below
    case WM_NCDESTROY:
      if (window == g_tip) g_tip = nullptr;
      break;
  }
  return DefWindowProcA(window, message, wParam, lParam);
}

// The room the text needs in the tip's own window. Drawn glyph by glyph, a
// line can come out a few pixels wider than its measured extent (each
// advance rounded on its own), so an average character more is kept free.
SIZE TextSize(HWND tip, const std::string& text) {
  HDC dc = GetDC(tip);
  HGDIOBJ old = SelectObject(dc, TipFont());
  RECT r{0, 0, 0, 0};
  DrawTextA(dc, text.c_str(), -1, &r, DT_SINGLELINE | DT_NOPREFIX | DT_CALCRECT);
  TEXTMETRICA metrics{};
  GetTextMetricsA(dc, &metrics);
  SelectObject(dc, old);
  ReleaseDC(tip, dc);
  return {r.right - r.left + metrics.tmAveCharWidth, r.bottom - r.top};
}

}  // namespace

bool RegisterTipClass(HINSTANCE instance) {
  WNDCLASSA tip{};
  tip.style = CS_SAVEBITS | CS_DROPSHADOW;
  tip.lpfnWndProc = TipProc;
  tip.hInstance = instance;
  tip.hCursor = LoadCursorA(nullptr, MAKEINTRESOURCEA(32512));  // IDC_ARROW
  tip.lpszClassName = kTipClass;
  g_instance = instance;
  return RegisterClassA(&tip) != 0 || GetLastError() == ERROR_CLASS_ALREADY_EXISTS;
}

void ShowTip(HWND owner, const std::string& text, POINT at) {
  // A tip owned by a window that has gone went with it.
  if (g_tip && GetWindow(g_tip, GW_OWNER) != owner) DestroyWindow(g_tip);
  if (!g_tip)
    g_tip = CreateWindowExA(WS_EX_TOOLWINDOW | WS_EX_TOPMOST | WS_EX_NOACTIVATE, kTipClass, "", WS_POPUP | WS_BORDER,
                            0, 0, 1, 1, owner, nullptr, g_instance, nullptr);
  if (!g_tip) return;
  SetWindowTextA(g_tip, text.c_str());
  const SIZE size = TextSize(g_tip, text);
  RECT frame{0, 0, size.cx + 2 * kPadX, size.cy + 2 * kPadY};
  AdjustWindowRectEx(&frame, WS_POPUP | WS_BORDER, FALSE, WS_EX_TOOLWINDOW);
  const int w = frame.right - frame.left, h = frame.bottom - frame.top;
  const int screenW = GetSystemMetrics(SM_CXSCREEN), screenH = GetSystemMetrics(SM_CYSCREEN);
  const int x = at.x + w > screenW ? screenW - w : at.x, y = at.y + h > screenH ? at.y - 2 * h : at.y;
  SetWindowPos(g_tip, HWND_TOPMOST, x < 0 ? 0 : x, y < 0 ? 0 : y, w, h, SWP_NOACTIVATE | SWP_SHOWWINDOW);
  InvalidateRect(g_tip, nullptr, TRUE);
}

void HideTip() {
  if (g_tip) ShowWindow(g_tip, SW_HIDE);
}

HWND TipWindow() { return g_tip; }
