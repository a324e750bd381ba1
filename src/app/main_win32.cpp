// Start-up and shut-down of Quernal.exe.
#include <windows.h>

#include "app/app_state_win32.h"
#include "app/clipboard_viewer_win32.h"
#include "app/driver_box_win32.h"
#include "app/main_window_win32.h"
#include "app/paint_program_win32.h"
#include "app/recent_files_win32.h"
#include "res/main_ids.h"
#include "app/startup_screen_win32.h"
#include "app/theme_win32.h"
#include "app/toolbar_win32.h"
#include "app/tooltip_win32.h"
#include "app/window_layout.h"
#include "calendar/calendar_dates.h"
#include "config/settings.h"
#include "config/settings_file.h"
#include "print/printer_win32.h"

namespace {

int ScreenColourDepth() {
  HDC screen = GetDC(nullptr);
  int bits = GetDeviceCaps(screen, BITSPIXEL) * GetDeviceCaps(screen, PLANES);
  ReleaseDC(nullptr, screen);
  return bits >= 9 ? 24 : bits;
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE previous, LPSTR commandLine, int show) {
  App.instance = instance;
  PrinterDC = CreateDefaultPrinterDC();
  if (!PrinterDC) ShowMessage(nullptr, IDS_NO_DEFAULT_PRINTER);
  DefaultWindowSize(GetSystemMetrics(SM_CYSCREEN), &App.defaultWidth, &App.defaultHeight);
  App.colourBits = ScreenColourDepth();
  LoadThemeFromSettings();
  App.childFont = CreateFontA(16, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, "Arial");
  App.faceBrush = CreateSolidBrush(GetSysColor(COLOR_BTNFACE));
  App.blackBrush = CreateSolidBrush(RGB(0, 0, 0));
  App.barBrush = CreateSolidBrush(GetSysColor(COLOR_BTNFACE));
  StartStartupScreen(instance);

  // The first calendar is built before the settings are read, so it always
  // has the compiled-in design.
  CalendarDate today = Today();
  App.document = CreateCalendar(today.year, today.month - 1);
  if (!App.document) ShowMessage(nullptr, IDS_INIT_YEAR_FAILED);

  RegisterTipClass(instance);
  if (!previous && !RegisterMainWindowClasses(instance)) {
    ShowMessage(nullptr, IDS_CLASS_REGISTRATION_FAILED);
    ExitProcess(0);
  }
  if (!CreateMainWindow()) return 0;
  LoadRecentFiles([](const char* path, void* window) { AddRecentFile(static_cast<HWND>(window), path); },
                  App.mainWindow);
  FindPaintProgram(Settings.PaintbrushPath, sizeof Settings.PaintbrushPath, Settings.PaintbrushName,
                   Settings.SearchForPaintbrush);

  lstrcpynA(Settings.ApplicationPath, ProgramFolder().c_str(), sizeof Settings.ApplicationPath);
  if (!Settings.OpenPath[0]) lstrcpynA(Settings.OpenPath, Settings.ApplicationPath, sizeof Settings.OpenPath);

  for (HWND child = GetWindow(App.mainWindow, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT))
    SendMessageA(child, WM_SETFONT, reinterpret_cast<WPARAM>(App.childFont), 0);
  RestoreWindowPosition(App.mainWindow);
  if (Settings.StartMaximized) PostMessageA(App.mainWindow, WM_SYSCOMMAND, SC_MAXIMIZE, 0);
  ShowWindow(App.mainWindow, show);
  UpdateWindow(App.mainWindow);
  SetFocus(App.mainWindow);
  UpdateTitle();
  SendMessageA(App.mainWindow, WM_DRAWCLIPBOARD, 0, 0);
  WarnAboutColourDepth(App.mainWindow, App.colourBits);
  if (commandLine && *commandLine) OpenOnStart(App.mainWindow, commandLine);

  MSG message;
  while (GetMessageA(&message, nullptr, 0, 0) > 0) {
    TranslateMessage(&message);
    DispatchMessageA(&message);
  }

  UnloadTheme();
  if (App.document) FreeCalendar(App.document);
  DeleteObject(App.childFont);
  DeleteObject(App.faceBrush);
  DeleteObject(App.blackBrush);
  DeleteObject(App.barBrush);
  UnregisterClassA(kToolbarClass, instance);
  UnregisterClassA(kMainWindowClass, instance);
  if (PrinterDC) DeleteDC(PrinterDC);
  return 0;
}
