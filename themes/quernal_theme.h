/* The interface between Quernal.exe and a theme plug-in (THEME_*.dll).
   Plain C, so that a theme built by any compiler can be loaded: every
   function is exported undecorated with the C calling convention, and only
   Win32 handles, RECT and int cross the boundary. */
#ifndef QUERNAL_THEME_H
#define QUERNAL_THEME_H
#include <windows.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Button states handed to ThemeDrawButton; bits, any combination. */
#define THEME_PRESSED 1 /* held down by the mouse */
#define THEME_HOT 2     /* the mouse is over it */

/* Flag bits of ThemeLoad. */
#define THEME_MONOCHROME 1 /* glyphs in black only, for grey-scale displays */

/* Prepares the theme. Quernal passes 11, 2, 0 and 35:
     glyphGrid   the glyphs are designed on a grid this many pixels square,
                 and drawn at the largest multiple of it, in half steps,
                 that fits a button with a margin;
     edge        the width in pixels of a button's raised or sunken edge;
     flags       THEME_* flag bits (0: the standard look);
     barHeight   the toolbar strip's height in pixels, its frame included;
     fileName    the plug-in's own file name, for a theme that keeps data
                 beside itself.
   Returns 1 when the theme is ready, 0 when it refuses the numbers. */
typedef int (*ThemeLoadProc)(int glyphGrid, int edge, int flags, int barHeight, const char* fileName);
/* Releases what ThemeLoad took. */
typedef void (*ThemeUnloadProc)(void);
/* The toolbar strip's height in pixels, its frame included. */
typedef int (*ThemeToolbarHeightProc)(void);
/* Paints the strip's background into `area`. */
typedef void (*ThemeDrawToolbarProc)(HDC dc, const RECT* area);
/* Paints a whole toolbar button: face, edge and the glyph of `command`
   (50 open, 51 save, 52 edit year, 53 edit page, 54 manual, 55 setup,
   56 exit). `liveButtons` is the LiveButtons setting: 0 never hot, 1 a hot
   button lights up, 2 a button shows its raised edge only while hot. */
typedef void (*ThemeDrawButtonProc)(HDC dc, const RECT* area, int command, int state, int liveButtons);

/* The names a plug-in exports. */
#define THEME_LOAD_NAME "ThemeLoad"
#define THEME_UNLOAD_NAME "ThemeUnload"
#define THEME_TOOLBAR_HEIGHT_NAME "ThemeToolbarHeight"
#define THEME_DRAW_TOOLBAR_NAME "ThemeDrawToolbar"
#define THEME_DRAW_BUTTON_NAME "ThemeDrawButton"

#ifdef __cplusplus
}
#endif
#endif
