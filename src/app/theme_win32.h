// The theme in use: a THEME_*.dll plug-in from the program's folder, or the
// standard look built into the program when no plug-in will load.
#pragma once
#include <windows.h>

#include "quernal_theme.h"  // THEME_PRESSED, THEME_HOT

// Loads the plug-in `fileName` (a bare file name in the program's folder)
// and prepares it. A missing file, a name with a folder in it, a missing
// function or a plug-in that refuses leaves the built-in look in use.
// True when the plug-in is in use.
bool LoadTheme(const char* fileName);
// Loads the theme named by ThemeCurrent in the settings file, read on its
// own as the settings proper are not loaded yet at that point of start-up.
bool LoadThemeFromSettings();
// Lets the plug-in go; the built-in look stays usable.
void UnloadTheme();
// The loaded plug-in's module, or none when the built-in look is in use.
HMODULE ThemeModule();

// Drawing through the theme in use.
int ToolbarHeight();
void DrawToolbarBackground(HDC dc, const RECT& area);
// `state`: THEME_PRESSED and THEME_HOT bits; the LiveButtons setting decides
// how a hot button looks.
void DrawToolbarButton(HDC dc, const RECT& area, int command, int state);
