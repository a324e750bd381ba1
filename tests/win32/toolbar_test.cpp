// The toolbar strip in a window of its own: its buttons, the commands they
// post and the tooltips a resting mouse brings up.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "app/theme_win32.h"
#include "app/toolbar_win32.h"
#include "app/tooltip_win32.h"
#include "dialog_driver.h"
#include "gdi_test_support.h"

namespace {

std::vector<int> g_commands;  // what reached the owner window

LRESULT CALLBACK OwnerProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_COMMAND && lParam == 0) g_commands.push_back(LOWORD(wParam));
  return DefWindowProcA(window, message, wParam, lParam);
}

// How wide `text` comes out in the tips' font: the columns from the left
// edge to its last inked pixel, drawn on a wide white bitmap.
int InkWidth(const char* text) {
  DibSurface surface(600, 40, RGB(255, 255, 255));
  const HGDIOBJ oldFont = SelectObject(surface.dc(), GetStockObject(DEFAULT_GUI_FONT));
  TextOutA(surface.dc(), 0, 0, text, lstrlenA(text));
  SelectObject(surface.dc(), oldFont);
  int right = 0;
  for (int x = 0; x < 600; ++x)
    for (int y = 0; y < 40; ++y)
      if (surface.Pixel(x, y) != RGB(255, 255, 255)) right = x + 1;
  return right;
}

class ToolbarTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const HINSTANCE instance = GetModuleHandleA(nullptr);
    LoadTheme("THEME_Standard.dll");
    ASSERT_TRUE(RegisterTipClass(instance));
    WNDCLASSA owner{};
    owner.lpfnWndProc = OwnerProc;
    owner.hInstance = instance;
    owner.lpszClassName = "QuernalToolbarTestOwner";
    RegisterClassA(&owner);
    HBRUSH face = GetSysColorBrush(COLOR_BTNFACE);
    // The main window's tests may have registered it with their window.
    if (!classRegistered_) {
      ASSERT_TRUE(RegisterToolbarClass(instance, face) || GetLastError() == ERROR_CLASS_ALREADY_EXISTS);
      classRegistered_ = true;
    }
    owner_ = CreateWindowA("QuernalToolbarTestOwner", "Toolbar owner", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 100, 100, 600,
                           300, nullptr, nullptr, instance, nullptr);
    ASSERT_NE(owner_, nullptr);
    bar_ = CreateToolbar(owner_, 500);
    ASSERT_NE(bar_, nullptr);
    Pump(100);
    g_commands.clear();
  }
  void TearDown() override {
    DestroyWindow(owner_);
    UnloadTheme();
  }
  // The buttons from left to right.
  std::vector<HWND> Buttons() const {
    std::vector<HWND> buttons;
    for (HWND child = GetWindow(bar_, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) buttons.push_back(child);
    std::sort(buttons.begin(), buttons.end(), [](HWND a, HWND b) {
      RECT ra, rb;
      GetWindowRect(a, &ra);
      GetWindowRect(b, &rb);
      return ra.left < rb.left;
    });
    return buttons;
  }
  // The mouse comes to rest on `button`, as the user moves it there.
  static void Hover(HWND button) {
    RECT r;
    GetWindowRect(button, &r);
    SetCursorPos((r.left + r.right) / 2, (r.top + r.bottom) / 2);
    SendMessageA(button, WM_MOUSEMOVE, 0, MAKELPARAM((r.right - r.left) / 2, (r.bottom - r.top) / 2));
  }
  static bool TipShowing() { return TipWindow() && IsWindowVisible(TipWindow()); }

  static bool classRegistered_;
  HWND owner_ = nullptr, bar_ = nullptr;
};
bool ToolbarTest::classRegistered_ = false;

}  // namespace

TEST_F(ToolbarTest, TheStripHoldsSevenButtonsThatPostTheirCommandsToItsOwner) {
  const std::vector<HWND> buttons = Buttons();
  ASSERT_EQ(buttons.size(), 7u);
  RECT inside;
  GetClientRect(bar_, &inside);
  MapWindowPoints(bar_, nullptr, reinterpret_cast<POINT*>(&inside), 2);
  int previousRight = inside.left;
  for (size_t i = 0; i < buttons.size(); ++i) {
    EXPECT_EQ(GetDlgCtrlID(buttons[i]), 50 + static_cast<int>(i));
    RECT r;
    GetWindowRect(buttons[i], &r);
    EXPECT_GE(r.left, previousRight) << "buttons overlap";
    EXPECT_GE(r.top, inside.top);
    EXPECT_LE(r.bottom, inside.bottom) << "a button sticks out of the strip";
    EXPECT_GE(r.bottom - r.top, 20) << "too small to click";
    previousRight = r.right;
  }
  EXPECT_LE(previousRight, inside.right);

  for (HWND button : buttons) SendMessageA(button, BM_CLICK, 0, 0);
  Pump(2000, [] { return g_commands.size() >= 7; });
  EXPECT_EQ(g_commands, (std::vector<int>{50, 51, 52, 53, 54, 55, 56}));
  EXPECT_EQ(GetFocus(), owner_) << "the keyboard stays with the owner";
}

TEST_F(ToolbarTest, AMouseRestingOnAButtonShowsItsWholeTipUntilItLeaves) {
  const std::vector<HWND> buttons = Buttons();
  ASSERT_EQ(buttons.size(), 7u);
  Hover(buttons[3]);
  Pump(100);
  EXPECT_FALSE(TipShowing()) << "the tip waits a moment";
  Pump(3000, TipShowing);
  ASSERT_TRUE(TipShowing());
  RECT tip, button;
  GetWindowRect(TipWindow(), &tip);
  GetWindowRect(buttons[3], &button);
  EXPECT_GE(tip.top, button.bottom) << "the tip covers its button";

  // Moving on to another button while a tip shows brings its tip at once,
  // the whole line of it (the longest tip; the end-to-end toolbar story
  // reads another), as drawn glyph by glyph, with room to spare.
  const char* const kLongest = "Allows Quernal's options to be configured";
  Hover(buttons[5]);
  Pump(50);
  EXPECT_EQ(TextOf(TipWindow()), kLongest);
  GetClientRect(TipWindow(), &tip);
  EXPECT_GE(tip.right, InkWidth(kLongest) + 8);

  SendMessageA(buttons[5], WM_MOUSELEAVE, 0, 0);
  EXPECT_FALSE(TipShowing());
  // Gone for good: no timer brings it back.
  Pump(1000);
  EXPECT_FALSE(TipShowing());
  // A click takes a tip away.
  Hover(buttons[0]);
  Pump(3000, TipShowing);
  SendMessageA(buttons[0], BM_CLICK, 0, 0);
  EXPECT_FALSE(TipShowing());
}
