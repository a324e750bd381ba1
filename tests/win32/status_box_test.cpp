#include <windows.h>

#include <cstring>

#include <gtest/gtest.h>

#include "gdi_test_support.h"
#include "print/status_box_win32.h"

namespace {
BOOL CALLBACK TakeStatusBox(HWND window, LPARAM out) {
  char kind[16] = "";
  GetClassNameA(window, kind, sizeof kind);
  if (std::strcmp(kind, "#32770") != 0 || !GetDlgItem(window, 101) || !GetDlgItem(window, 102)) return TRUE;
  *reinterpret_cast<HWND*>(out) = window;
  return FALSE;
}

// The status box among this thread's windows (a dialog with the text 101 and
// the bar 102), or null.
HWND StatusBox() {
  HWND found = nullptr;
  EnumThreadWindows(GetCurrentThreadId(), TakeStatusBox, reinterpret_cast<LPARAM>(&found));
  return found;
}

// The colour the box paints at x of a bar 100 pixels wide.
COLORREF BarColourAt(HWND box, int x) {
  DibSurface surface(100, 10, 0);
  DRAWITEMSTRUCT item{ODT_BUTTON, 102, 0, 0, 0, GetDlgItem(box, 102), surface.dc(), {0, 0, 100, 10}, 0};
  SendMessageA(box, WM_DRAWITEM, 102, reinterpret_cast<LPARAM>(&item));
  return surface.Pixel(x, 5);
}
}  // namespace

TEST(StatusBox, ShowsItsTextAndFillsTheBarFromTheLeft) {
  ShowPrintStatus(nullptr, "Saving Family.CLN");
  HWND box = StatusBox();
  ASSERT_NE(box, nullptr);
  char text[64];
  GetDlgItemTextA(box, 101, text, sizeof text);
  EXPECT_STREQ(text, "Saving Family.CLN");
  const COLORREF done = GetSysColor(COLOR_BTNSHADOW), toDo = GetSysColor(COLOR_3DLIGHT);
  EXPECT_EQ(BarColourAt(box, 50), toDo) << "nothing done before the first update";

  UpdatePrintStatus(14, 3);  // 3 of 13 steps: done up to x = 23
  GetDlgItemTextA(box, 102, text, sizeof text);
  EXPECT_STREQ(text, "14,3");
  EXPECT_EQ(BarColourAt(box, 20), done);
  EXPECT_EQ(BarColourAt(box, 30), toDo);
  UpdatePrintStatus(14, 13);
  EXPECT_EQ(BarColourAt(box, 99), done) << "the last step fills the bar";

  ClosePrintStatus();
  EXPECT_EQ(StatusBox(), nullptr);
  EXPECT_FALSE(IsWindow(box));
  UpdatePrintStatus(14, 5);  // no box: nothing happens
}
