// THEME_Ink.dll: the standard toolbar drawn in ink, its glyphs in black and
// white only: quiet beside colourful pictures, and clear on grey-scale
// displays.
#include "standard_theme_win32.h"

#define THEME_EXPORT extern "C" __declspec(dllexport)

THEME_EXPORT int ThemeLoad(int glyphGrid, int edge, int flags, int barHeight, const char* fileName) {
  return StandardThemeLoad(glyphGrid, edge, flags | THEME_MONOCHROME, barHeight, fileName);
}
THEME_EXPORT void ThemeUnload(void) { StandardThemeUnload(); }
THEME_EXPORT int ThemeToolbarHeight(void) { return StandardThemeToolbarHeight(); }
THEME_EXPORT void ThemeDrawToolbar(HDC dc, const RECT* area) { StandardThemeDrawToolbar(dc, area); }
THEME_EXPORT void ThemeDrawButton(HDC dc, const RECT* area, int command, int state, int liveButtons) {
  StandardThemeDrawButton(dc, area, command, state, liveButtons);
}
