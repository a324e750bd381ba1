// The rest of start-up's user-interface support: the start-up screen and the
// settings read before the settings proper, the display-driver warning, the
// search for the paint program and the clipboard viewer.
#include <windows.h>

#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "app/clipboard_viewer_win32.h"
#include "app/driver_box_win32.h"
#include "app/paint_program_win32.h"
#include "res/main_ids.h"
#include "app/startup_screen_win32.h"
#include "app/theme_win32.h"
#include "config/settings.h"
#include "config/settings_file.h"
#include "dialog_driver.h"
#include "test_support.h"

namespace {

// QUERNL.INI in the configuration folder holds `lines` for the test's
// length; a folder the test had to make goes again afterwards.
class ScopedSettingsFile {
 public:
  explicit ScopedSettingsFile(const std::string& lines) {
    char folder[MAX_PATH];
    EXPECT_TRUE(ConfigFolder(folder, sizeof folder));
    folder_ = folder;
    madeFolder_ = CreateDirectoryA(folder_.c_str(), nullptr) != 0;
    std::ofstream(ConfigFile(kSettingsFileName)) << "[Quernal]\n" << lines;
  }
  ~ScopedSettingsFile() {
    DeleteFileA(ConfigFile(kSettingsFileName));
    if (madeFolder_) RemoveDirectoryA(folder_.c_str());
  }

 private:
  std::string folder_;
  bool madeFolder_ = false;
};

}  // namespace

// The screen shows centred without taking the focus and closes at a click
// (how long it stays in the program is the end-to-end tests'); settings
// that switch it off show none, and the theme follows the settings file.
TEST(StartupScreen, ShowsCentredWithoutTheFocusClosesAtAClickAndFollowsTheSettings) {
  const HINSTANCE instance = GetModuleHandleA(nullptr);
  HWND screen = ShowStartupScreen(instance, 60000);
  ASSERT_NE(screen, nullptr);
  EXPECT_TRUE(IsWindowVisible(screen));
  EXPECT_NE(GetActiveWindow(), screen);
  RECT r;
  GetWindowRect(screen, &r);
  EXPECT_NEAR((r.left + r.right) / 2, GetSystemMetrics(SM_CXSCREEN) / 2, 1);
  EXPECT_NEAR((r.top + r.bottom) / 2, GetSystemMetrics(SM_CYSCREEN) / 2, 1);
  SendMessageA(screen, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(20, 20));
  EXPECT_FALSE(IsWindow(screen));
  {
    ScopedSettingsFile file("ShowStartupWindow = 0\nThemeCurrent = THEME_Partial.dll\n");
    EXPECT_EQ(StartStartupScreen(instance), nullptr);
    EXPECT_FALSE(LoadThemeFromSettings());
    EXPECT_EQ(ToolbarHeight(), 35);
  }
  {
    ScopedSettingsFile file("ThemeCurrent = THEME_Standard.dll\n");
    EXPECT_TRUE(LoadThemeFromSettings());
  }
  UnloadTheme();
}

class DriverBoxTest : public QuernalTest {};

// The warning shows on displays of 256 colours or fewer while the setting
// asks for it; OK alone keeps it, its check box stops it for good. A box
// that comes when it should not is closed, so the test goes on to fail.
TEST_F(DriverBoxTest, TheCheckBoxStopsTheWarningForGood) {
  const struct {
    unsigned setting;
    int colourBits;
    bool shows, tick;
    unsigned after;
  } steps[] = {{1, 8, true, false, 1}, {1, 4, true, true, 0}, {0, 8, false, false, 0},
               {1, 9, false, false, 1}};
  for (const auto& step : steps) {
    Settings.ShowDriverMessage = step.setting;
    bool shown = false;
    DialogDriver driver;
    driver.Then("Quernal", [&](HWND box) {
      shown = true;
      EXPECT_EQ(ItemText(box, IDC_DRIVER_DONT_SHOW), "Do not show this message again");
      EXPECT_NE(ItemText(box, IDC_DRIVER_TEXT).find("256 colors or fewer"), std::string::npos);
      if (step.tick) SetCheck(box, IDC_DRIVER_DONT_SHOW, true);
      Press(box, IDOK);
    });
    WarnAboutColourDepth(nullptr, step.colourBits);
    EXPECT_EQ(shown, step.shows) << step.colourBits << " bits, setting " << step.setting;
    EXPECT_EQ(Settings.ShowDriverMessage, step.after) << step.colourBits << " bits";
  }
}

class PaintProgramTest : public QuernalTest {
 protected:
  void SetUp() override {
    QuernalTest::SetUp();
    char path[4096] = "";
    GetEnvironmentVariableA("PATH", path, sizeof path);
    oldPath_ = path;
    paint_ = dir_.File("QPAINT.EXE");
    WriteFile(paint_, "MZ");
    // PATH may quote a folder.
    SetEnvironmentVariableA("PATH", (oldPath_ + ";\"" + dir_.path() + "\"").c_str());
  }
  void TearDown() override {
    SetEnvironmentVariableA("PATH", oldPath_.c_str());
    QuernalTest::TearDown();
  }
  std::string oldPath_, paint_;
};

// A missing path is searched for only when asked, a stale one replaced when
// another is found, and one naming an existing file kept.
TEST_F(PaintProgramTest, AMissingOrStalePathIsSearchedForOnlyWhenAsked) {
  const std::string other = dir_.File("Other.exe"), stale = "C:\\nowhere\\QPAINT.EXE";
  WriteFile(other, "MZ");
  const struct {
    std::string before;
    const char* name;
    int search;
    bool found;
    std::string after;
  } cases[] = {{"", "QPAINT.EXE", 0, false, ""},       {"", "QPAINT.EXE", 1, true, paint_},
               {stale, "QPAINT.EXE", 1, true, paint_}, {stale, "NOSUCHPAINT.EXE", 1, false, stale},
               {other, "QPAINT.EXE", 1, true, other}};
  for (const auto& c : cases) {
    char path[260] = "";
    lstrcpyA(path, c.before.c_str());
    EXPECT_EQ(FindPaintProgram(path, sizeof path, c.name, c.search), c.found) << c.before << " " << c.name;
    EXPECT_EQ(lstrcmpiA(path, c.after.c_str()), 0) << path;
  }
  // The Windows folder is searched too; a buffer too small takes nothing.
  char found[260] = "";
  EXPECT_TRUE(FindPaintProgram(found, sizeof found, "notepad.exe", 1));
  char small[8] = "";
  EXPECT_FALSE(FindPaintProgram(small, sizeof small, "QPAINT.EXE", 1));
  EXPECT_STREQ(small, "");
}

namespace {

int g_drawsSeen = 0;  // WM_DRAWCLIPBOARD reaching the viewer after ours
LRESULT CALLBACK OursProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_DRAWCLIPBOARD) return PassClipboardNews(wParam, lParam), 0;
  if (message == WM_CHANGECBCHAIN) return ClipboardChainChanged(wParam, lParam), 0;
  return DefWindowProcA(window, message, wParam, lParam);
}
LRESULT CALLBACK NextProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_DRAWCLIPBOARD) ++g_drawsSeen;
  return DefWindowProcA(window, message, wParam, lParam);
}

HWND MakeWindow(const char* name, WNDPROC proc, HMENU menu) {
  WNDCLASSA c{};
  c.lpfnWndProc = proc;
  c.hInstance = GetModuleHandleA(nullptr);
  c.lpszClassName = name;
  RegisterClassA(&c);
  return CreateWindowA(name, name, WS_OVERLAPPEDWINDOW, 0, 0, 200, 100, nullptr, menu, c.hInstance, nullptr);
}

void PutOnClipboard(HWND owner, UINT format, HANDLE data) {
  ASSERT_TRUE(OpenClipboard(owner));
  EmptyClipboard();
  SetClipboardData(format, data);
  CloseClipboard();
}

HANDLE Text(const char* text) {
  HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, strlen(text) + 1);
  memcpy(GlobalLock(block), text, strlen(text) + 1);
  GlobalUnlock(block);
  return block;
}


}  // namespace

// Paste following the clipboard is the main window's (its own test); the
// chain must pass every change on and mend itself when a viewer leaves.
TEST(ClipboardViewer, TheChainHoldsTogether) {
  HWND next = MakeWindow("QuernalTestNextViewer", NextProc, nullptr);
  HWND ours = MakeWindow("QuernalTestViewer", OursProc, nullptr);
  ASSERT_TRUE(next && ours);
  SetClipboardViewer(next);
  JoinClipboardChain(ours);
  Pump(200);

  g_drawsSeen = 0;
  PutOnClipboard(ours, CF_TEXT, Text("news"));
  Pump(1000, [] { return g_drawsSeen > 0; });
  EXPECT_GT(g_drawsSeen, 0) << "the next viewer was not told";

  // The next viewer leaves: we hear of it and stop passing the news on.
  ChangeClipboardChain(next, nullptr);
  Pump(200);
  g_drawsSeen = 0;
  PutOnClipboard(ours, CF_TEXT, Text("more news"));
  Pump(500);
  EXPECT_EQ(g_drawsSeen, 0);

  LeaveClipboardChain(ours);
  DestroyWindow(ours);
  DestroyWindow(next);
}
