// The toolbar strip and the start-up screen of Quernal.exe started as a user
// starts it, driven from outside.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <string>
#include <vector>

#include "e2e_support.h"
#include "res/main_ids.h"

TEST(StartupScreen, StaysForItsTimeWithoutHoldingUpTheProgram) {
  std::ofstream(ConfigFolder() + "QUERNL.INI") << "[Quernal]\nShowStartupWindow = 1\nLogoDelay = 4000\n";
  Quernal quernal;
  ASSERT_NE(quernal.MainWindow(), nullptr);
  HWND screen = FindProcessWindow(quernal.pid(), "QuernalStartup", true);
  ASSERT_NE(screen, nullptr) << "no start-up screen";
  Sleep(500);  // time to lift itself above the main window
  SaveShot("startup");
  // The main window answers while the screen is up.
  EXPECT_NE(SendMessageTimeoutA(quernal.window(), WM_NULL, 0, 0, SMTO_NORMAL, 2000, nullptr), 0);
  EXPECT_TRUE(IsWindowVisible(screen));
  for (int i = 0; i < 100 && IsWindow(screen); ++i) Sleep(100);
  EXPECT_FALSE(IsWindow(screen)) << "the start-up screen outstays its LogoDelay";
  quernal.Command(IDM_EXIT);
  EXPECT_TRUE(quernal.Ended());
}

namespace {

// The display's dots per inch for the programs started while it lives.
class ScopedDpi {
 public:
  explicit ScopedDpi(DWORD dpi) { Set(dpi); }
  ~ScopedDpi() { Set(96); }

 private:
  static void Set(DWORD dpi) {
    HKEY key;
    if (RegCreateKeyExA(HKEY_CURRENT_USER, "Control Panel\\Desktop", 0, nullptr, 0, KEY_SET_VALUE, nullptr, &key,
                        nullptr) != ERROR_SUCCESS)
      return;
    RegSetValueExA(key, "LogPixels", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&dpi), sizeof dpi);
    RegCloseKey(key);
  }
};

// The width of what is drawn on a button: the columns holding a pixel of
// neither the button's face nor its edges.
int GlyphWidth(HWND button) {
  RECT r;
  GetWindowRect(button, &r);
  const int w = r.right - r.left, h = r.bottom - r.top;
  const std::vector<DWORD> pixels = ScreenPixels(r.left, r.top, w, h);
  const DWORD face = pixels[(h / 2) * w + 4];  // inside the edge, left of the glyph
  int first = w, last = -1;
  for (int y = 4; y < h - 4; ++y)
    for (int x = 4; x < w - 4; ++x)
      if (pixels[y * w + x] != face) first = std::min(first, x), last = std::max(last, x);
  return last - first + 1;
}

}  // namespace

// The strip tops the main window, as wide as it, with the page view and its
// scroll bar below; a resting mouse brings a button's tip; at 144 dots per
// inch the strip, its buttons and their glyphs grow by half, as the menus
// and dialogs do; Exit on an unchanged calendar closes without a question.
TEST(Toolbar, StripsTheTopOfTheMainWindowAndGrowsWithTheDisplaysDotsPerInch) {
  WriteSettings();
  int glyph96 = 0;
  for (DWORD dpi : {96u, 144u}) {
    ScopedDpi scoped(dpi);
    Quernal quernal;
    ASSERT_NE(quernal.MainWindow(), nullptr);
    HWND bar = ToolbarStrip(quernal.window());
    RECT r, client, scroll;
    ASSERT_TRUE(GetWindowRect(bar, &r));
    GetClientRect(quernal.window(), &client);
    EXPECT_EQ(r.right - r.left, client.right) << "as wide as the window";
    GetWindowRect(GetDlgItem(quernal.window(), 703), &scroll);
    EXPECT_EQ(scroll.top, r.bottom) << "the page view starts below the strip";
    Sleep(300);  // painted
    const int glyph = GlyphWidth(GetDlgItem(bar, IDM_SAVE));
    if (dpi == 144) {
      SaveShot("toolbar-144dpi");
      EXPECT_EQ(r.bottom - r.top, MulDiv(35, 144, 96));
      EXPECT_GE(glyph, glyph96 * 3 / 2 - 2) << "a glyph of " << glyph96 << " pixels at 96 dpi";
      ASSERT_TRUE(quernal.Close());
      continue;
    }
    glyph96 = glyph;
    EXPECT_EQ(r.bottom - r.top, 35);
    SaveShot("toolbar");
    GetWindowRect(GetDlgItem(bar, IDM_EDIT_YEAR_BUTTON), &r);
    SetCursorPos((r.left + r.right) / 2, (r.top + r.bottom) / 2);
    HWND tip = nullptr;
    for (int i = 0; i < 50 && !tip; ++i) {
      Sleep(100);
      tip = FindProcessWindow(quernal.pid(), "QuernalTip", true);
    }
    ASSERT_NE(tip, nullptr) << "no tooltip";
    EXPECT_EQ(TextOf(tip), "Edits year");
    SaveShot("toolbar-tip");
    PostMessageA(bar, WM_COMMAND, MAKEWPARAM(IDM_EXIT, BN_CLICKED), reinterpret_cast<LPARAM>(GetDlgItem(bar, IDM_EXIT)));
    EXPECT_TRUE(quernal.Ended()) << "still running: a question was asked, or the button did nothing";
  }
}
