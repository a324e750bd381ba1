// The theme loader with the real THEME_Standard.dll and two faulty plug-ins
// beside the test program, and the standard look they share.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "app/theme_win32.h"
#include "base/program_win32.h"
#include "config/settings.h"
#include "gdi_test_support.h"

namespace {

std::string ModulePath(HMODULE module) {
  char path[MAX_PATH] = "";
  GetModuleFileNameA(module, path, sizeof path);
  return path;
}

class ThemeTest : public ::testing::Test {
 protected:
  void TearDown() override {
    UnloadTheme();
    Settings.LiveButtons = 1;
  }
};

// A button of `command` drawn by the theme in use on a 30-pixel square.
struct Drawn {
  Drawn(int command, int state) : surface(30, 30, RGB(255, 0, 255)) {
    DrawToolbarButton(surface.dc(), RECT{0, 0, 30, 30}, command, state);
  }
  bool SameAs(const Drawn& other) const {
    for (int y = 0; y < 30; ++y)
      for (int x = 0; x < 30; ++x)
        if (surface.Pixel(x, y) != other.surface.Pixel(x, y)) return false;
    return true;
  }
  DibSurface surface;
};

}  // namespace

// The standard plug-in loads from the program's folder and lets go; any
// faulty theme, or one named by another path, leaves the built-in look.
TEST_F(ThemeTest, TheStandardPlugInLoadsAndAnyFaultyThemeLeavesTheBuiltInLook) {
  const std::string elsewhere = ProgramFolder() + "THEME_Standard.dll";
  for (const char* name : {"THEME_Missing.dll", "THEME_Partial.dll", "THEME_Refusing.dll", "", "..\\THEME_Standard.dll",
                           elsewhere.c_str(), "sub/THEME_Standard.dll", "NUL.dll", ".."}) {
    ASSERT_TRUE(LoadTheme("THEME_Standard.dll"));
    EXPECT_EQ(ModulePath(ThemeModule()), elsewhere);
    EXPECT_FALSE(LoadTheme(name)) << name;
    EXPECT_EQ(ThemeModule(), nullptr) << name;
    EXPECT_EQ(ToolbarHeight(), 35) << name;
    Drawn button(56, 0);
    EXPECT_NE(button.surface.Pixel(15, 15), RGB(255, 0, 255)) << name << ": the built-in look draws";
  }
  // Neither faulty plug-in, nor the standard one let go, stays loaded.
  EXPECT_EQ(GetModuleHandleA("THEME_Partial.dll"), nullptr);
  EXPECT_EQ(GetModuleHandleA("THEME_Refusing.dll"), nullptr);
  EXPECT_EQ(GetModuleHandleA("THEME_Standard.dll"), nullptr);
}

TEST_F(ThemeTest, ThePlugInAndTheBuiltInLookDrawAlike) {
  const int kCommands[] = {50, 51, 52, 53, 54, 55, 56};
  for (int state : {0, THEME_PRESSED, THEME_HOT}) {
    for (int command : kCommands) {
      ASSERT_TRUE(LoadTheme("THEME_Standard.dll"));
      Drawn plugIn(command, state);
      ASSERT_FALSE(LoadTheme("THEME_Missing.dll"));
      Drawn builtIn(command, state);
      EXPECT_TRUE(plugIn.SameAs(builtIn)) << "command " << command << ", state " << state;
    }
  }
}

TEST_F(ThemeTest, EachCommandHasItsOwnGlyphAndEachStateItsOwnFace) {
  ASSERT_TRUE(LoadTheme("THEME_Standard.dll"));
  for (int a = 50; a <= 56; ++a)
    for (int b = a + 1; b <= 56; ++b) EXPECT_FALSE(Drawn(a, 0).SameAs(Drawn(b, 0))) << a << " and " << b;
  EXPECT_FALSE(Drawn(51, 0).SameAs(Drawn(51, THEME_PRESSED)));

  // LiveButtons: 0 ignores the mouse, 1 lights a hot button, 2 shows the
  // raised edge only while the mouse is over the button.
  const COLORREF highlight = GetSysColor(COLOR_BTNHIGHLIGHT);
  Settings.LiveButtons = 0;
  EXPECT_TRUE(Drawn(52, THEME_HOT).SameAs(Drawn(52, 0)));
  Settings.LiveButtons = 1;
  EXPECT_FALSE(Drawn(52, THEME_HOT).SameAs(Drawn(52, 0)));
  EXPECT_EQ(Drawn(52, 0).surface.Pixel(0, 0), Drawn(52, THEME_HOT).surface.Pixel(0, 0)) << "both raised";
  Settings.LiveButtons = 2;
  EXPECT_EQ(Drawn(52, 0).surface.Pixel(1, 1), GetSysColor(COLOR_BTNFACE)) << "flat until hot";
  Drawn hot(52, THEME_HOT);
  EXPECT_TRUE(hot.surface.Pixel(0, 5) == highlight || hot.surface.Pixel(1, 5) == highlight) << "raised while hot";
}

// The ink theme draws the standard toolbar without colour.
TEST_F(ThemeTest, TheInkThemeDrawsTheStandardLookInBlackAndWhite) {
  ASSERT_TRUE(LoadTheme("THEME_Ink.dll"));
  for (int command = 50; command <= 56; ++command) {
    Drawn button(command, 0);
    for (int y = 4; y < 26; ++y)
      for (int x = 4; x < 26; ++x) {
        const COLORREF p = button.surface.Pixel(x, y);
        EXPECT_TRUE(GetRValue(p) == GetGValue(p) && GetGValue(p) == GetBValue(p)) << command << " at " << x << "," << y;
      }
  }
  EXPECT_FALSE(Drawn(51, 0).SameAs(Drawn(52, 0)));
}
