// Opens the shipped manual in the browser.
#pragma once
#include <windows.h>

// Opens html\manual.htm in the program's folder at `anchor` ("DOCUMENTATION",
// "EVENTS", ...). False when no browser would take it.
bool OpenManual(HWND owner, const char* anchor);
