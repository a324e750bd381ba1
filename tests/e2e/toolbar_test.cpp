// The toolbar strip and the start-up screen of Quernal.exe started as a user
// starts it, driven from outside.
#include <windows.h>

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "e2e_support.h"

TEST(Toolbar, StripsTheTopOfTheMainWindowAndItsExitButtonCloses) {
  WriteSettings();
  Quernal quernal;
  ASSERT_NE(quernal.MainWindow(), nullptr);
  HWND bar = FindWindowExA(quernal.window(), nullptr, "QuernalBar", nullptr);
  ASSERT_NE(bar, nullptr);
  RECT r;
  GetWindowRect(bar, &r);
  POINT corner{0, 0};
  ClientToScreen(quernal.window(), &corner);
  EXPECT_EQ(r.left, corner.x);
  EXPECT_EQ(r.top, corner.y);
  const int defaultHeight = GetSystemMetrics(SM_CYSCREEN) * 95 / 100;
  EXPECT_EQ(r.right - r.left, defaultHeight * 360 / 460) << "as wide as the window's default width";
  std::vector<int> ids;
  for (HWND b = GetWindow(bar, GW_CHILD); b; b = GetWindow(b, GW_HWNDNEXT)) ids.push_back(GetDlgCtrlID(b));
  EXPECT_EQ(ids, (std::vector<int>{50, 51, 52, 53, 54, 55, 56}));

  // The page view and its vertical scroll bar start below the strip.
  RECT scroll;
  GetWindowRect(GetDlgItem(quernal.window(), 703), &scroll);
  EXPECT_EQ(scroll.top, r.bottom);
  SaveShot("toolbar");

  // The mouse resting on Edit year brings its tip.
  GetWindowRect(GetDlgItem(bar, 52), &r);
  SetCursorPos((r.left + r.right) / 2, (r.top + r.bottom) / 2);
  HWND tip = nullptr;
  for (int i = 0; i < 50 && !tip; ++i) {
    Sleep(100);
    tip = FindProcessWindow(quernal.pid(), "QuernalTip", true);
  }
  ASSERT_NE(tip, nullptr) << "no tooltip";
  EXPECT_EQ(TextOf(tip), "Edits year");
  SaveShot("toolbar-tip");

  // Exit on an unchanged calendar closes without a question.
  PostMessageA(bar, WM_COMMAND, MAKEWPARAM(56, BN_CLICKED), reinterpret_cast<LPARAM>(GetDlgItem(bar, 56)));
  EXPECT_TRUE(quernal.Ended()) << "still running: a question was asked, or the button did nothing";
}

TEST(StartupScreen, StaysForItsTimeWithoutHoldingUpTheProgram) {
  std::ofstream(ConfigFolder() + "QUERNL.INI") << "[Quernal]\nShowStartupWindow = 1\nLogoDelay = 4000\n";
  Quernal quernal;
  ASSERT_NE(quernal.MainWindow(), nullptr);
  HWND screen = FindProcessWindow(quernal.pid(), "QuernalStartup", true);
  ASSERT_NE(screen, nullptr) << "no start-up screen";
  Sleep(500);  // time to lift itself above the main window
  SaveShot("startup");
  // The main window answers while the screen is up.
  SendMessageA(quernal.window(), WM_COMMAND, 323, 0);
  EXPECT_NE(quernal.Title().find("Cover"), std::string::npos) << quernal.Title();
  EXPECT_TRUE(IsWindowVisible(screen));
  for (int i = 0; i < 100 && IsWindow(screen); ++i) Sleep(100);
  EXPECT_FALSE(IsWindow(screen)) << "the start-up screen outstays its LogoDelay";
  quernal.Command(56);
  EXPECT_TRUE(quernal.Ended());
}
