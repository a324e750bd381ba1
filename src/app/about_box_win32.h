// The About box of the Help menu.
#pragma once
#include <windows.h>

void ShowAboutBox(HWND owner);
