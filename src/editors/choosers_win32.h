// The real choosers of a sheet's tab: the font box, the colour dialog, the
// picture-open dialog and the reading of its file with its messages, and
// the paint program, each modal over the tab (the paint program over the
// whole sheet).
#pragma once
#include <windows.h>

#include "editors/choosers.h"

Choosers Win32Choosers(HWND tab);
