// The standard look of the toolbar: compiled into THEME_Standard.dll, and
// into Quernal.exe as the look it falls back on when no plug-in loads. The
// functions match the plug-in interface of quernal_theme.h one for one.
#pragma once
#include "quernal_theme.h"

int StandardThemeLoad(int glyphGrid, int edge, int flags, int barHeight, const char* fileName);
void StandardThemeUnload();
int StandardThemeToolbarHeight();
void StandardThemeDrawToolbar(HDC dc, const RECT* area);
void StandardThemeDrawButton(HDC dc, const RECT* area, int command, int state, int liveButtons);
