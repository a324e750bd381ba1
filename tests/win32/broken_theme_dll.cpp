// Two faulty theme plug-ins for the loader's tests, from one source:
// THEME_Partial.dll lacks its button drawing; THEME_Refusing.dll has every
// function but will not load. Both claim a toolbar height no real theme
// has, so a test sees at once if the program used them anyway.
#include "quernal_theme.h"

#define THEME_EXPORT extern "C" __declspec(dllexport)

THEME_EXPORT int ThemeLoad(int, int, int, int, const char*) { return BROKEN_THEME_LOADS; }
THEME_EXPORT void ThemeUnload(void) {}
THEME_EXPORT int ThemeToolbarHeight(void) { return 99; }
THEME_EXPORT void ThemeDrawToolbar(HDC, const RECT*) {}
#if !BROKEN_THEME_LACKS_BUTTON
THEME_EXPORT void ThemeDrawButton(HDC, const RECT*, int, int, int) {}
#endif
