// Opens the shipped manual in the browser.
#pragma once
#include <windows.h>

// Opens html\manual.htm in the program's folder at `anchor` ("DOCUMENTATION",
// "EVENTS", ...). When the file is missing or no browser will take it, says
// so in a message box that names the file, and returns false.
// A question asked first, if one is set, may decline (false: nothing opens).
bool OpenManual(HWND owner, const char* anchor);
// The question OpenManual asks before it opens the browser (none: it asks
// nothing); the program sets it from its settings.
void SetManualQuestion(bool (*ask)(HWND owner));
