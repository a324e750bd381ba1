// "Choose theme...": the toolbar themes (THEME_*.dll) of the program's
// folder, one to choose.
#pragma once
#include <windows.h>

// `theme` (a buffer of `size`) in and out: the file name of the theme in
// use; after OK the one chosen. True after OK with a theme selected.
bool ChooseTheme(HWND owner, char* theme, size_t size);
