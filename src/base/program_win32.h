// The running program: its folder, its string table and its messages.
#pragma once
#include <windows.h>

#include <string>

// The folder of the program file, with its trailing backslash.
std::string ProgramFolder();
// Text `id` of the program's string table, or the program's own words that
// the table lacks it.
std::string StringTableText(UINT id);
// A message box captioned "Message" with string-table text `id`.
int ShowMessage(HWND owner, UINT id, UINT flags = MB_OK | MB_ICONINFORMATION);
// A warning from dialog template `name` that has an icon (101), a text (102),
// a check box (103) and OK (and maybe Cancel): shows `icon` (a system icon
// id), `text` unless empty (the template's own then), the check box as
// `checked` says; returns the check box's state when the box closes,
// whichever way, and tells in `pressed` (if given) IDOK or IDCANCEL.
bool WarningWithCheckBox(HWND owner, const char* name, LPCSTR icon, const std::string& text, bool checked,
                         INT_PTR* pressed = nullptr);

// The display's dots per inch (96 at 100 percent), and `pixels` designed at
// 96 dpi scaled to it.
int ScreenDpi();
int ScaledForScreen(int pixels);
