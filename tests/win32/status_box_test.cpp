#include <windows.h>

#include <cstring>

#include <gtest/gtest.h>

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
  HDC screen = GetDC(nullptr);
  HDC dc = CreateCompatibleDC(screen);
  HBITMAP bitmap = CreateCompatibleBitmap(screen, 100, 10);
  HGDIOBJ old = SelectObject(dc, bitmap);
  DRAWITEMSTRUCT item{};
  item.CtlType = ODT_BUTTON;
  item.CtlID = 102;
  item.hwndItem = GetDlgItem(box, 102);
  item.hDC = dc;
  item.rcItem = {0, 0, 100, 10};
  SendMessageA(box, WM_DRAWITEM, 102, reinterpret_cast<LPARAM>(&item));
  COLORREF c = GetPixel(dc, x, 5);
  SelectObject(dc, old);
  DeleteObject(bitmap);
  DeleteDC(dc);
  ReleaseDC(nullptr, screen);
  return c;
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
