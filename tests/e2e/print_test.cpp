// Printing from Quernal.exe as a user prints: the test opens a calendar in
// the program, drives its print dialogs and the boxes between the passes,
// and leaves the PDFs that the private CUPS queue writes to
// tests/print/check-print.sh, which checks their pages.
// The cases run only when that script starts them (QUERNAL_PRINT_CALENDAR
// names the calendar to print); elsewhere they are skipped.
#include <windows.h>
#include <dlgs.h>
#include <shlobj.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "e2e_support.h"
#include "res/main_ids.h"
#include "res/print_dialog_ids.h"

namespace {

// The calendar the checking script made, or skip.
#define CALENDAR_OR_SKIP(calendar)                                                         \
  const std::string calendar = Environment("QUERNAL_PRINT_CALENDAR");                     \
  if (calendar.empty()) GTEST_SKIP() << "run by tests/print/check-print.sh with a CUPS queue"

// The boxes between a booklet's passes: turn the paper over, then done.
void AnswerTheBoxesBetweenThePasses(const Quernal& quernal) {
  HWND turnOver = quernal.Wait("Printing...", 180000);
  ASSERT_NE(turnOver, nullptr) << "no box between the passes";
  SaveShot("turn-over-paper", turnOver);
  Press(turnOver, IDOK);  // Continue
  HWND finished = quernal.Wait("Complete", 180000);
  ASSERT_NE(finished, nullptr) << "no box at the end";
  SaveShot("print-finished", finished);
  EXPECT_NE(TextOf(GetDlgItem(finished, IDOK)).find("Done"), std::string::npos);
  Press(finished, IDOK);
}

// Prints the calendar with print command `command` (single or double
// sided); `choose` sets the print dialog up before OK.
template <typename Choose>
void PrintCalendar(const std::string& calendar, int command, const char* shot, Choose choose) {
  WriteSettings("InkJet = 0\n");
  Quernal quernal(WindowsPath(calendar));
  ASSERT_NE(quernal.MainWindow(), nullptr) << "no main window";
  quernal.Command(command);
  HWND dialog = quernal.Wait("Print");
  ASSERT_NE(dialog, nullptr) << "no print dialog";
  // The program's own layout of the dialog, with the common dialog's controls.
  EXPECT_NE(GetDlgItem(dialog, cmb4), nullptr);
  EXPECT_EQ(TextOf(GetDlgItem(dialog, IDC_FACE_UP)), "Face up");
  if (command == IDM_PRINT_DOUBLE) {
    EXPECT_EQ(IsDlgButtonChecked(dialog, IDC_FACE_UP), BST_UNCHECKED) << "Face up shows the InkJet setting";
    EXPECT_FALSE(IsWindowEnabled(GetDlgItem(dialog, rad3))) << "the booklet is the whole year";
  }
  choose(dialog);
  SaveShot(shot, dialog);
  Press(dialog, IDOK);
  if (command == IDM_PRINT_DOUBLE) AnswerTheBoxesBetweenThePasses(quernal);
  ASSERT_TRUE(quernal.Settle());
  EXPECT_EQ(quernal.Wait("Message", 500), nullptr) << "the job failed";
  ASSERT_TRUE(quernal.Close());
}

void PrintDoubleSided(const std::string& calendar, bool faceUp) {
  PrintCalendar(calendar, IDM_PRINT_DOUBLE, faceUp ? "print-double-face-up" : "print-double", [faceUp](HWND dialog) {
    if (faceUp) SetCheck(dialog, IDC_FACE_UP, true);
  });
  // The choice is kept in the settings for the next booklet.
  EXPECT_NE(ReadAll(ConfigFolder() + "QUERNL.INI").find(faceUp ? "InkJet = 1" : "InkJet = 0"), std::string::npos);
}

}  // namespace

TEST(Print, AllPages) {
  CALENDAR_OR_SKIP(calendar);
  PrintCalendar(calendar, IDM_PRINT_SINGLE, "print", [](HWND) {});
}

TEST(Print, PageRange) {
  CALENDAR_OR_SKIP(calendar);
  PrintCalendar(calendar, IDM_PRINT_SINGLE, "print", [](HWND dialog) {
    SetCheck(dialog, rad1, false);
    SetCheck(dialog, rad3, true);
    SetDlgItemTextA(dialog, edt1, "3");
    SetDlgItemTextA(dialog, edt2, "5");
  });
}

TEST(Print, DoubleSided) {
  CALENDAR_OR_SKIP(calendar);
  PrintDoubleSided(calendar, false);
}

TEST(Print, DoubleSidedFaceUp) {
  CALENDAR_OR_SKIP(calendar);
  PrintDoubleSided(calendar, true);
}

namespace {

// The width of the white page in the main window's client area, as the
// screen shows it: the longest white run across the page's picture area,
// which is empty in a new calendar.
int WhitePageWidthOnScreen(HWND window) {
  RECT client;
  GetClientRect(window, &client);
  POINT origin{0, 0};
  ClientToScreen(window, &origin);
  // Left of and above the scroll bars, whose edges are white too.
  const int w = client.right - GetSystemMetrics(SM_CXVSCROLL), h = client.bottom - GetSystemMetrics(SM_CYHSCROLL);
  const std::vector<DWORD> pixels = ScreenPixels(origin.x, origin.y, w, h);
  int widest = 0;
  for (int y = h / 8; y < h / 3; y += 7) {
    int run = 0;
    for (int x = 0; x < w; ++x) {
      run = (pixels[y * w + x] & 0xFFFFFF) == 0xFFFFFF ? run + 1 : 0;
      widest = std::max(widest, run);
    }
  }
  return widest;
}

// The page's width once the window has painted it afresh.
int PageWidthShown(const Quernal& quernal, HWND window) {
  RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
  quernal.Settle();
  Sleep(500);
  return WhitePageWidthOnScreen(window);
}

// The page is 95 percent of the page view high, and as wide as a paper of
// paperW : paperH makes it (the white inside, give or take its frame).
void ExpectPageShape(const Quernal& quernal, HWND window, int paperW, int paperH) {
  const int h = PageViewHeight(window) * 95 / 100, w = h * paperW / paperH;
  EXPECT_NEAR(PageWidthShown(quernal, window), w, 4) << "a page of " << paperW << " : " << paperH << ", " << h << " high";
}

// The size of `printer`'s page, in its device units.
bool PrinterPage(const std::string& printer, int* w, int* h) {
  // Wine learns the CUPS printers when a process first loads its spooler.
  DWORD needed = 0, count = 0;
  EnumPrintersA(PRINTER_ENUM_LOCAL, nullptr, 4, nullptr, 0, &needed, &count);
  HDC dc = CreateDCA(nullptr, printer.c_str(), nullptr, nullptr);
  if (!dc) return false;
  *w = GetDeviceCaps(dc, HORZRES), *h = GetDeviceCaps(dc, VERTRES);
  DeleteDC(dc);
  return true;
}

}  // namespace

// QUERNAL_PRINT_PRINTER names the printer CUPS offers, or is "none" when the
// script hid every printer. Without one the program says so and the page
// keeps the 360 : 460 shape; with one it takes the shape of its paper.
TEST(Print, PageShapeFollowsThePrinter) {
  const std::string printer = Environment("QUERNAL_PRINT_PRINTER");
  if (printer.empty()) GTEST_SKIP() << "run by tests/print/check-print.sh";
  const bool none = printer == "none";
  int paperW = 360, paperH = 460;
  if (!none) {
    ASSERT_TRUE(PrinterPage(printer, &paperW, &paperH)) << "Wine does not see the printer " << printer;
  }
  WriteSettings();
  Quernal quernal("");
  HWND message = quernal.Wait("Message", none ? 30000 : 3000);
  if (none) {
    ASSERT_NE(message, nullptr) << "no message about the missing printer";
    EXPECT_EQ(MessageText(message), "There does not appear to be a default printer installed on this system.");
    Press(message, IDOK);
  } else {
    EXPECT_EQ(message, nullptr) << MessageText(message);
  }
  HWND window = quernal.MainWindow();
  ASSERT_NE(window, nullptr) << "the program carries on without a printer";
  ExpectPageShape(quernal, window, paperW, paperH);
  SaveShot(none ? "page-without-printer" : "page-with-printer", window);
  ASSERT_TRUE(quernal.Close());
}

// Whatever the user picks in printer setup, a calendar page is portrait.
TEST(Print, PrinterSetupKeepsThePagePortrait) {
  const std::string printer = Environment("QUERNAL_PRINT_PRINTER");
  if (printer.empty() || printer == "none") GTEST_SKIP() << "run by tests/print/check-print.sh";
  int paperW, paperH;
  ASSERT_TRUE(PrinterPage(printer, &paperW, &paperH)) << "Wine does not see the printer " << printer;
  WriteSettings();
  Quernal quernal("");
  HWND window = quernal.MainWindow();
  ASSERT_NE(window, nullptr);
  quernal.Command(IDM_SELECT_PRINTER);
  HWND dialog = quernal.Wait("Print Setup");
  ASSERT_NE(dialog, nullptr) << "no printer-setup dialog";
  EXPECT_GE(SendDlgItemMessageA(dialog, cmb1, CB_GETCOUNT, 0, 0), 1) << "the printers are listed";
  SetCheck(dialog, rad1, false);
  SetCheck(dialog, rad2, true);  // Landscape
  SaveShot("print-setup", dialog);
  Press(dialog, IDOK);
  ASSERT_TRUE(quernal.Settle());
  EXPECT_EQ(quernal.Wait("Message", 1000), nullptr) << "the printer could not be set up";
  ExpectPageShape(quernal, window, paperW, paperH);
  ASSERT_TRUE(quernal.Close());
}

// Letter chosen in Select printer is the paper the page is shown on and the
// paper both print commands print on: their dialogs start from it.
TEST(Print, ThePaperChosenInSetupIsThePaperPrinted) {
  CALENDAR_OR_SKIP(calendar);
  WriteSettings("InkJet = 0\n");
  Quernal quernal(WindowsPath(calendar));
  HWND window = quernal.MainWindow();
  ASSERT_NE(window, nullptr) << "no main window";
  // The page's width on the screen tells its paper: Letter's is wider than A4's.
  const int a4 = PageWidthShown(quernal, window);
  quernal.Command(IDM_SELECT_PRINTER);
  HWND setup = quernal.Wait("Print Setup");
  ASSERT_NE(setup, nullptr) << "no printer-setup dialog";
  HWND paper = GetDlgItem(setup, cmb2);
  // The printer names its papers in its own words ("US Letter", "Letter").
  std::string papers;
  int found = CB_ERR;
  for (int i = 0; i < SendMessageW(paper, CB_GETCOUNT, 0, 0) && found == CB_ERR; ++i) {
    wchar_t name[128] = L"";
    if (SendMessageW(paper, CB_GETLBTEXTLEN, i, 0) < 128) SendMessageW(paper, CB_GETLBTEXT, i, reinterpret_cast<LPARAM>(name));
    const std::wstring text = name;
    papers += std::string(text.begin(), text.end()) + "; ";
    if (text.find(L"Letter") != std::wstring::npos && text.find(L"Small") == std::wstring::npos) found = i;
  }
  ASSERT_NE(found, CB_ERR) << "the printer offers no Letter paper: " << papers;
  SendMessageA(paper, CB_SETCURSEL, found, 0);
  SendMessageA(setup, WM_COMMAND, MAKEWPARAM(cmb2, CBN_SELCHANGE), reinterpret_cast<LPARAM>(paper));
  Press(setup, IDOK);
  ASSERT_TRUE(quernal.Settle());
  const int letter = PageWidthShown(quernal, window);
  EXPECT_GT(letter, a4 + 10) << "the page did not take Letter's shape";

  for (const int command : {IDM_PRINT_SINGLE, IDM_PRINT_DOUBLE}) {
    quernal.Command(command);
    HWND dialog = quernal.Wait("Print");
    ASSERT_NE(dialog, nullptr) << "no print dialog";
    Press(dialog, IDOK);
    if (command == IDM_PRINT_DOUBLE) AnswerTheBoxesBetweenThePasses(quernal);
    ASSERT_TRUE(quernal.Settle());
    EXPECT_EQ(quernal.Wait("Message", 500), nullptr) << "the job failed";
    EXPECT_NEAR(PageWidthShown(quernal, window), letter, 2) << "the page snapped back after command " << command;
  }
  ASSERT_TRUE(quernal.Close());
}
