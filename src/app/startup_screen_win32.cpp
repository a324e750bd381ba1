#include "app/startup_screen_win32.h"

#include "res/main_ids.h"
#include "base/program_win32.h"
#include "config/settings_file.h"

namespace {

constexpr int kWidth = 400, kHeight = 150, kBand = 8;
constexpr UINT_PTR kCloseTimer = 1, kLiftTimer = 2;
const COLORREF kBandColour = RGB(176, 32, 40);

HFONT Font(int height, int weight) {
  return CreateFontA(-height, 0, 0, 0, weight, 0, 0, 0, ANSI_CHARSET, 0, 0, ANTIALIASED_QUALITY, 0, "Arial");
}

void Text(HDC dc, const char* text, int height, int weight, COLORREF colour, RECT r) {
  HFONT font = Font(height, weight);
  HGDIOBJ old = SelectObject(dc, font);
  SetTextColor(dc, colour);
  DrawTextA(dc, text, -1, &r, DT_SINGLELINE | DT_NOPREFIX | DT_LEFT | DT_TOP);
  SelectObject(dc, old);
  DeleteObject(font);
}

void Paint(HWND window) {
  PAINTSTRUCT ps;
  HDC dc = BeginPaint(window, &ps);
  RECT r;
  GetClientRect(window, &r);
  FillRect(dc, &r, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
  RECT band{r.left, r.top, r.right, r.top + kBand};
  HBRUSH brush = CreateSolidBrush(kBandColour);
  FillRect(dc, &band, brush);
  DeleteObject(brush);

  const HINSTANCE instance = reinterpret_cast<HINSTANCE>(GetWindowLongPtrA(window, GWLP_HINSTANCE));
  HICON icon = static_cast<HICON>(LoadImageA(instance, MAKEINTRESOURCEA(IDI_QUERNAL), IMAGE_ICON, 32, 32, 0));
  const int textLeft = 96;
  if (icon) {
    DrawIconEx(dc, 40, 48, icon, 32, 32, 0, nullptr, DI_NORMAL);
    DestroyIcon(icon);
  }
  SetBkMode(dc, TRANSPARENT);
  Text(dc, StringTableText(IDS_PRODUCT_NAME).c_str(), 34, FW_BOLD, RGB(32, 32, 32),
       {textLeft, 36, r.right - 16, 80});
  Text(dc, "Wall calendars, designed and printed", 16, FW_NORMAL, RGB(96, 96, 96), {textLeft, 84, r.right - 16, 104});
  Text(dc, "Click to continue", 12, FW_NORMAL, RGB(150, 150, 150), {textLeft, r.bottom - 26, r.right - 16, r.bottom - 8});
  EndPaint(window, &ps);
}

// Some window systems (an X server without a window manager) show a window
// above a topmost one when it is shown after it. So whenever the program
// shows another window while the screen is up, the screen shows itself
// again, on top.
BOOL CALLBACK CountShown(HWND window, LPARAM count) {
  if (IsWindowVisible(window)) ++*reinterpret_cast<int*>(count);
  return TRUE;
}
void Lift(HWND window) {
  int shown = 0;
  EnumThreadWindows(GetCurrentThreadId(), CountShown, reinterpret_cast<LPARAM>(&shown));
  const LONG_PTR seen = GetWindowLongPtrA(window, GWLP_USERDATA);
  SetWindowLongPtrA(window, GWLP_USERDATA, shown);
  if (seen == 0 || seen == shown) return;
  ShowWindow(window, SW_HIDE);
  SetWindowPos(window, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE | SWP_SHOWWINDOW);
}

LRESULT CALLBACK StartupProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_PAINT: Paint(window); return 0;
    case WM_MOUSEACTIVATE: return MA_NOACTIVATE;
    case WM_TIMER:
      if (wParam == kLiftTimer) return Lift(window), 0;
      DestroyWindow(window);
      return 0;
    case WM_LBUTTONDOWN:
    case WM_RBUTTONDOWN: DestroyWindow(window); return 0;
    case WM_DESTROY:
      KillTimer(window, kCloseTimer);
      KillTimer(window, kLiftTimer);
      return 0;
  }
  return DefWindowProcA(window, message, wParam, lParam);
}

}  // namespace

HWND ShowStartupScreen(HINSTANCE instance, UINT milliseconds) {
  WNDCLASSA cls{};
  cls.lpfnWndProc = StartupProc;
  cls.hInstance = instance;
  cls.hCursor = LoadCursorA(nullptr, MAKEINTRESOURCEA(32512));  // IDC_ARROW
  cls.lpszClassName = kStartupScreenClass;
  if (!RegisterClassA(&cls) && GetLastError() != ERROR_CLASS_ALREADY_EXISTS) return nullptr;

  const int x = (GetSystemMetrics(SM_CXSCREEN) - kWidth) / 2, y = (GetSystemMetrics(SM_CYSCREEN) - kHeight) / 2;
  HWND window = CreateWindowExA(WS_EX_TOOLWINDOW | WS_EX_TOPMOST, kStartupScreenClass, "", WS_POPUP | WS_BORDER, x, y,
                                kWidth, kHeight, nullptr, nullptr, instance, nullptr);
  if (!window) return nullptr;
  SetTimer(window, kCloseTimer, milliseconds, nullptr);
  ShowWindow(window, SW_SHOWNOACTIVATE);
  UpdateWindow(window);
  Lift(window);  // counts the windows shown so far
  SetTimer(window, kLiftTimer, 250, nullptr);
  return window;
}

HWND StartStartupScreen(HINSTANCE instance) {
  const char* file = ConfigFile(kSettingsFileName);
  const bool show = !*file || GetPrivateProfileIntA("Quernal", "ShowStartupWindow", 1, file) != 0;
  const UINT delay = *file ? GetPrivateProfileIntA("Quernal", "LogoDelay", 8000, file) : 8000;
  return show ? ShowStartupScreen(instance, delay) : nullptr;
}
