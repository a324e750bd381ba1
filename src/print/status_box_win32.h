// The modeless status box of loading, saving and printing: a line of text
// and a bar.
#pragma once
#include <windows.h>

void ShowPrintStatus(HWND owner, const char* text);
void UpdatePrintStatus(int total, int current);
void ClosePrintStatus();
