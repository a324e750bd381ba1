#include "app/theme_win32.h"

#include <cstring>
#include <string>

#include "base/program_win32.h"
#include "config/plain_name.h"
#include "config/settings.h"
#include "config/settings_file.h"
#include "standard_theme_win32.h"

namespace {

// The numbers every theme is prepared with: an 11-pixel glyph grid, 2-pixel
// button edges, the standard look, a 35-pixel toolbar strip.
constexpr int kGlyphGrid = 11, kEdge = 2, kFlags = 0, kBarHeight = 35;

struct Theme {
  HMODULE module = nullptr;
  ThemeLoadProc load = StandardThemeLoad;
  ThemeUnloadProc unload = StandardThemeUnload;
  ThemeToolbarHeightProc toolbarHeight = StandardThemeToolbarHeight;
  ThemeDrawToolbarProc drawToolbar = StandardThemeDrawToolbar;
  ThemeDrawButtonProc drawButton = StandardThemeDrawButton;
};
Theme g_theme;

template <typename Proc>
bool Find(HMODULE module, const char* name, Proc* proc) {
  *proc = reinterpret_cast<Proc>(reinterpret_cast<void*>(GetProcAddress(module, name)));
  return *proc != nullptr;
}

void UseBuiltIn(const char* fileName) {
  g_theme = Theme{};
  StandardThemeLoad(kGlyphGrid, kEdge, kFlags, kBarHeight, fileName);
}

}  // namespace

bool LoadTheme(const char* fileName) {
  UnloadTheme();
  // Only a plain file name: the settings file must not point the program at
  // a library somewhere else.
  if (!fileName || !IsPlainFileName(fileName)) return UseBuiltIn(""), false;
  HMODULE module = LoadLibraryA((ProgramFolder() + fileName).c_str());
  if (!module) return UseBuiltIn(fileName), false;
  Theme plugIn;
  plugIn.module = module;
  const bool complete = Find(module, THEME_LOAD_NAME, &plugIn.load) && Find(module, THEME_UNLOAD_NAME, &plugIn.unload) &&
                        Find(module, THEME_TOOLBAR_HEIGHT_NAME, &plugIn.toolbarHeight) &&
                        Find(module, THEME_DRAW_TOOLBAR_NAME, &plugIn.drawToolbar) &&
                        Find(module, THEME_DRAW_BUTTON_NAME, &plugIn.drawButton);
  if (!complete || !plugIn.load(kGlyphGrid, kEdge, kFlags, kBarHeight, fileName) || plugIn.toolbarHeight() <= 0) {
    FreeLibrary(module);
    return UseBuiltIn(fileName), false;
  }
  g_theme = plugIn;
  return true;
}

bool LoadThemeFromSettings() {
  char name[260] = "THEME_Standard.dll";
  const char* file = ConfigFile(kSettingsFileName);
  if (*file) GetPrivateProfileStringA("Quernal", "ThemeCurrent", "THEME_Standard.dll", name, sizeof name, file);
  return LoadTheme(name);
}

void UnloadTheme() {
  if (g_theme.module) {
    g_theme.unload();
    FreeLibrary(g_theme.module);
  }
  UseBuiltIn("");
}

HMODULE ThemeModule() { return g_theme.module; }

// Themes draw for 96 dots per inch; on a finer display the strip grows with
// the menus and dialogs, and the theme draws its glyphs to the larger
// buttons.
int ToolbarHeight() { return ScaledForScreen(g_theme.toolbarHeight()); }

void DrawToolbarBackground(HDC dc, const RECT& area) { g_theme.drawToolbar(dc, &area); }

void DrawToolbarButton(HDC dc, const RECT& area, int command, int state) {
  g_theme.drawButton(dc, &area, command, state, static_cast<int>(Settings.LiveButtons));
}
