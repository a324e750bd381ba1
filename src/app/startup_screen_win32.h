// The start-up screen: a borderless panel with the icon and the product's
// name in the middle of the screen. It neither blocks start-up nor takes the
// focus, and closes itself after its time or at a click.
#pragma once
#include <windows.h>

constexpr const char* kStartupScreenClass = "QuernalStartup";

// Shows the screen for `milliseconds`; returns it, or none.
HWND ShowStartupScreen(HINSTANCE instance, UINT milliseconds);
// Shows it when ShowStartupWindow in the settings file is set (default 1),
// for LogoDelay milliseconds (default 8000). The settings proper are not
// read yet at that point of start-up, so both are read on their own.
HWND StartStartupScreen(HINSTANCE instance);
