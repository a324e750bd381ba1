// The main window: the page view with its zoom and scroll bars, and the
// commands of the menu.
#pragma once
#include <windows.h>

constexpr const char* kMainWindowClass = "QuernalApplication";
constexpr int kVerticalScrollId = 703, kHorizontalScrollId = 704, kScrollCornerId = 705;

LRESULT CALLBACK MainWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
// Registers "QuernalApplication" and "QuernalBar"; false when either fails.
bool RegisterMainWindowClasses(HINSTANCE instance);
// The main window at the default size, with its toolbar strip and scroll
// bars; none when it cannot be made.
HWND CreateMainWindow();
// The two scroll bars and the square between them.
void CreateChildControls(HWND window);
// Moves the window to where it was at the last exit, pulled onto this screen.
void RestoreWindowPosition(HWND window);
// The commands that need a month page are greyed while the year or the
// cover is shown; Cut and Copy need a picture on it, Paste one on the
// clipboard. The View menu names the months and ticks the page shown.
void UpdatePageCommands(HWND window);
// Opens the file named on the command line, exactly as it stands.
void OpenOnStart(HWND window, const char* path);
