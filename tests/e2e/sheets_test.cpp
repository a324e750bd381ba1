// The sheets in the real program: a month page and the year with its cover
// designed, saved, reopened and shown, the next new calendar starting from
// the design.
#include <windows.h>
#include <commctrl.h>
#include <prsht.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "calendar/records.h"
#include "e2e_support.h"
#include "res/colour_dialog_ids.h"
#include "res/main_ids.h"
#include "res/page_sheet_ids.h"

namespace {

constexpr COLORREF kCardinal = RGB(178, 28, 40);  // entry 34 of the colour table shipped
constexpr COLORREF kMeadow = RGB(60, 150, 70);    // the photograph beside the tests

HWND ShowTab(HWND sheet, int index) {
  SendMessageA(sheet, PSM_SETCURSEL, index, 0);
  return reinterpret_cast<HWND>(SendMessageA(sheet, PSM_GETCURRENTPAGEHWND, 0, 0));
}

// Presses a colour button and double-clicks entry `index` of the table.
void PickColour(const Quernal& quernal, HWND tab, int button, int index) {
  Press(tab, button);
  HWND colour = quernal.Wait("Color");
  ASSERT_NE(colour, nullptr);
  HWND list = GetDlgItem(colour, IDC_COLOUR_LIST);
  SendMessageA(list, LB_SETCURSEL, index, 0);
  for (WORD click : {LBN_SELCHANGE, LBN_DBLCLK})
    PostMessageA(colour, WM_COMMAND, MAKEWPARAM(IDC_COLOUR_LIST, click), reinterpret_cast<LPARAM>(list));
  WaitGone(colour);
}

// Chooses a file in the picture-open dialog that `button` opens.
void ChoosePicture(const Quernal& quernal, HWND tab, int button, const std::string& path) {
  Press(tab, button);
  HWND open = quernal.Wait("Open");
  ASSERT_NE(open, nullptr);
  ChooseFile(open, path);
  WaitGone(open);
}

CalendarHeader ReadHeader(const std::string& path) {
  CalendarHeader header{};
  const std::string file = ReadAll(path);
  if (file.size() >= sizeof header) std::memcpy(&header, file.data(), sizeof header);
  return header;
}

// Month page `month` of a calendar file, walking the records before it.
bool ReadMonthPage(const std::string& path, int month, MonthPage* page) {
  const std::string file = ReadAll(path);
  size_t at = ReadHeader(path).RecordSize;
  if (at == 0) return false;
  for (int i = 0; i <= month; ++i) {
    if (at + sizeof *page > file.size()) return false;
    std::memcpy(page, file.data() + at, sizeof *page);
    at += page->RecordSize;
  }
  return true;
}

// How many pixels of the window's client area are within a few steps of `colour`.
int PixelsLike(HWND window, COLORREF colour) {
  RECT r;
  GetClientRect(window, &r);
  POINT origin{0, 0};
  ClientToScreen(window, &origin);
  int count = 0;
  for (DWORD p : ScreenPixels(origin.x, origin.y, r.right, r.bottom)) {
    const int red = (p >> 16) & 255, green = (p >> 8) & 255, blue = p & 255;
    if (std::abs(red - GetRValue(colour)) < 12 && std::abs(green - GetGValue(colour)) < 12 &&
        std::abs(blue - GetBValue(colour)) < 12)
      ++count;
  }
  return count;
}

// What the month story chose in the sheet.
void ExpectTheDesign(const MonthPage& page) {
  EXPECT_EQ(page.HeadFontSize, 60);
  EXPECT_EQ(page.HeadPlacement, 2);
  EXPECT_EQ(page.HeadInteriorPadding, 20);
  EXPECT_EQ(page.PageBackgroundColour, kCardinal);
}

// The page paints after the window appears: it has a few seconds to show
// at least 2,000 pixels of each colour.
bool Shows(HWND window, std::initializer_list<COLORREF> colours) {
  for (int tries = 0; tries < 50; ++tries, Sleep(100)) {
    bool all = true;
    for (COLORREF c : colours) all = all && PixelsLike(window, c) >= 2000;
    if (all) return true;
  }
  return false;
}

}  // namespace

// One calendar's May, year page and cover designed in the sheets, saved,
// reopened and shown; the next new calendar starts from the month's design.
TEST(Sheets, AMonthTheYearAndTheCoverDesignedSavedReopenedAndCarriedToTheNextCalendar) {
  WriteSettings("");
  const std::string designed = FreshFile("Designed.CLN"), next = FreshFile("Next.CLN");
  {
    Quernal quernal;
    ASSERT_NE(quernal.MainWindow(), nullptr);
    quernal.Do(WM_COMMAND, IDM_PAGE_JANUARY + 4);  // May
    EXPECT_EQ(PixelsLike(quernal.window(), kCardinal), 0);
    quernal.Command(IDM_EDIT_MONTH);
    HWND sheet = quernal.Wait("Page");
    ASSERT_NE(sheet, nullptr);
    HWND heading = ShowTab(sheet, 0);
    Press(heading, IDC_HEAD_FONT);
    HWND font = quernal.Wait("Font");
    ASSERT_NE(font, nullptr);
    SetDlgItemTextA(font, 101, "60");
    Press(font, IDOK);
    WaitGone(font);
    SetCheck(heading, 117, false);
    SetCheck(heading, 118, false);
    SetCheck(heading, 119, true);
    SetDlgItemTextA(heading, 135, "20");

    HWND caption = ShowTab(sheet, 4);
    SetDlgItemTextA(caption, 140, "Walks by the river");
    PickColour(quernal, caption, 128, 34);
    ChoosePicture(quernal, ShowTab(sheet, 3), 138, BesideTests("Meadow.jpg"));
    SaveShot("page-sheet-picture", sheet);
    Press(sheet, IDOK);
    WaitGone(sheet);

    quernal.Command(IDM_EDIT_YEAR);
    sheet = quernal.Wait("Year");
    ASSERT_NE(sheet, nullptr);
    HWND year = ShowTab(sheet, 0);
    SetCheck(year, 101, false);
    SetDlgItemTextA(year, 103, "2030");
    PickColour(quernal, year, 106, 34);  // the year page's paper
    HWND cover = ShowTab(sheet, 1);
    ChoosePicture(quernal, cover, 138, BesideTests("Meadow.jpg"));
    SetDlgItemTextA(cover, 153, "Family 2030");
    SaveShot("year-sheet-cover", sheet);
    Press(sheet, IDOK);
    WaitGone(sheet);

    EXPECT_NE(quernal.SaveAs(designed), "");
    ASSERT_TRUE(quernal.Close());
  }

  MonthPage may;
  ASSERT_TRUE(ReadMonthPage(designed, 4, &may));
  ExpectTheDesign(may);
  EXPECT_STREQ(may.LeftCaption, "Walks by the river");
  EXPECT_GT(may.PictureDataSize, 640u * 480u * 3u) << "the photograph travels in the file";
  const CalendarHeader header = ReadHeader(designed);
  EXPECT_EQ(header.Year, 2030);
  EXPECT_EQ(header.UseCurrentYear, 0);
  EXPECT_EQ(header.YagPageColour, kCardinal);
  EXPECT_STREQ(header.CoverTitle, "Family 2030");
  EXPECT_GT(header.CoverPictureDataSize, 640u * 480u * 3u);
  {
    // Reopened, May shows the design: the cardinal page and the photograph;
    // the cover its photograph, the year page its paper.
    Quernal quernal(designed);
    ASSERT_NE(quernal.MainWindow(), nullptr);
    EXPECT_TRUE(Shows(quernal.window(), {kCardinal, kMeadow}));
    SaveShot("designed-may", quernal.window());
    quernal.Do(WM_COMMAND, IDM_PAGE_COVER);
    EXPECT_TRUE(Shows(quernal.window(), {kMeadow})) << "the cover's photograph";
    quernal.Do(WM_COMMAND, IDM_PAGE_YEAR);
    EXPECT_TRUE(Shows(quernal.window(), {kCardinal})) << "the year page's paper";
    SaveShot("designed-year", quernal.window());
    ASSERT_TRUE(quernal.Close());
  }
  {
    // File > New takes the design from the settings written on exit (the
    // calendar the program starts with is built before they are read).
    Quernal quernal;
    ASSERT_NE(quernal.MainWindow(), nullptr);
    quernal.Do(WM_COMMAND, IDM_NEW);
    EXPECT_NE(quernal.SaveAs(next), "");
    ASSERT_TRUE(quernal.Close());
  }
  MonthPage january;
  ASSERT_TRUE(ReadMonthPage(next, 0, &january));
  ExpectTheDesign(january);
}
