// The main window in the test's own process, driven as a user drives it:
// its title, menu, toolbar strip, page view and file dialogs.
#include <windows.h>
#include <commctrl.h>
#include <commdlg.h>
#include <prsht.h>
#include <shellapi.h>
#include <shlobj.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "app/app_state_win32.h"
#include "app/main_window_win32.h"
#include "res/main_ids.h"
#include "app/theme_win32.h"
#include "app/tooltip_win32.h"
#include "base/dib.h"
#include "calendar/calendar_file.h"
#include "base/manual_win32.h"
#include "base/program_win32.h"
#include "base/text.h"
#include "calendar/calendar_model.h"
#include "config/settings.h"
#include "dialog_driver.h"
#include "pictures/image_files.h"
#include "res/page_sheet_ids.h"
#include "res/setup_sheet_ids.h"
#include "res/year_sheet_ids.h"
#include "res/picture_dialog_ids.h"
#include "test_support.h"

namespace {

// The Explorer-style file dialog's folder, as it shows it.
std::string FolderShown(HWND dialog) {
  char folder[MAX_PATH] = "";
  SendMessageA(dialog, CDM_GETFOLDERPATH, sizeof folder, reinterpret_cast<LPARAM>(folder));
  return folder;
}

std::string WithoutTrailingSlash(std::string folder) {
  while (folder.size() > 3 && folder.back() == '\\') folder.pop_back();
  return folder;
}

// `key` pressed with Ctrl held, as the window's message loop passes it on.
void ControlKey(HWND window, WPARAM key) {
  BYTE keys[256], held[256];
  GetKeyboardState(keys);
  std::copy(keys, keys + 256, held);
  held[VK_CONTROL] = 0x80;
  SetKeyboardState(held);
  SendMessageA(window, WM_KEYDOWN, key, 0);
  SetKeyboardState(keys);
}

class MainWindowTest : public QuernalTest {
 protected:
  void SetUp() override {
    QuernalTest::SetUp();
    App.instance = GetModuleHandleA(nullptr);
    App.faceBrush = App.barBrush = GetSysColorBrush(COLOR_BTNFACE);
    App.defaultWidth = 450, App.defaultHeight = 580;
    App.path = "Untitled.CLN";
    App.document = CreateCalendar(2026, 4);
    ASSERT_NE(App.document, 0u);
    LoadTheme("THEME_Standard.dll");
    ASSERT_TRUE(RegisterTipClass(App.instance));
    // The toolbar tests may have registered the strip's class already.
    RegisterMainWindowClasses(App.instance);
    ASSERT_NE(CreateMainWindow(), nullptr);
    // As start-up leaves them on a first start.
    CopyText(Settings.ApplicationPath, sizeof Settings.ApplicationPath, ProgramFolder().c_str());
    CopyText(Settings.OpenPath, sizeof Settings.OpenPath, Settings.ApplicationPath);
    ShowWindow(App.mainWindow, SW_SHOW);
    UpdateTitle();
    Pump(200);  // the zoom and page commands the window posts itself
  }
  void TearDown() override {
    DestroyWindow(App.mainWindow);
    SetManualQuestion(nullptr);  // the other tests open the manual without asking
    // The window's end quits the program's loop: not this test program's.
    MSG quit;
    while (PeekMessageA(&quit, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE)) {
    }
    FreeCalendar(App.document);
    App.document = 0;
    UnloadTheme();
    QuernalTest::TearDown();
  }
  HWND window() const { return App.mainWindow; }
  void Command(int id) const { SendMessageA(window(), WM_COMMAND, id, 0); }
  std::string Title() const { return TextOf(window()); }
  bool Greyed(int id) const { return (GetMenuState(GetMenu(window()), id, MF_BYCOMMAND) & MF_GRAYED) != 0; }
};

}  // namespace

// The pages grey what cannot act on them; the title, the manual's question,
// System information and Setup's theme.
TEST_F(MainWindowTest, PagesGreyTheMonthCommandsAndKeepTheTitle) {
  const std::string title = Title();
  EXPECT_EQ(title, "Quernal [ Untitled.CLN \x96 May ]");
  const struct {
    int command;
    bool monthPage;
  } pages[] = {{IDM_PAGE_YEAR, false}, {314, true}};
  HMENU menu = GetMenu(window());
  for (const auto& page : pages) {
    Command(page.command);
    for (int id : {IDM_EDIT_MONTH, IDM_REPLICATE, IDM_EVENTS})
      EXPECT_EQ(Greyed(id), !page.monthPage) << "command " << id << " on page " << page.command;
    EXPECT_FALSE(Greyed(IDM_EDIT_YEAR));
    EXPECT_EQ(Title(), title) << "the title names the document, not the page shown";
    for (int id = IDM_PAGE_JANUARY; id <= IDM_PAGE_COVER; ++id)
      EXPECT_EQ((GetMenuState(menu, id, MF_BYCOMMAND) & MF_CHECKED) != 0, id == page.command) << id;
  }
  // Ctrl+Page Down and Up go round the pages in the View menu's order.
  const struct {
    WPARAM key;
    int from, to;
  } steps[] = {{VK_PRIOR, 310, IDM_PAGE_COVER}, {VK_NEXT, IDM_PAGE_COVER, 310}};
  for (const auto& step : steps) {
    Command(step.from);
    ControlKey(window(), step.key);
    EXPECT_TRUE(GetMenuState(menu, step.to, MF_BYCOMMAND) & MF_CHECKED) << step.from << " to " << step.to;
  }
  // The toolbar's "Edits current page" edits the year and the cover in the year sheet.
  {
    DialogDriver sheet;
    sheet.Then("Year", [](HWND year) { Press(year, IDCANCEL); });
    Command(IDM_PAGE_COVER);
    Command(IDM_EDIT_PAGE_BUTTON);
    Pump(300);
    EXPECT_TRUE(sheet.Finished()) << "no year sheet";
  }
  // A calendar opened on its cover comes in with the month commands greyed.
  Command(IDM_PAGE_COVER);
  Command(IDM_NEW);
  EXPECT_FALSE(Greyed(IDM_EVENTS)) << "a new calendar opens on a month";

  // The manual asks first; cancelled with its check box cleared, nothing
  // opens and it asks no more.
  DialogDriver driver;
  driver.Then("Manual", [](HWND box) {
    SetCheck(box, IDC_DRIVER_DONT_SHOW, false);
    Press(box, IDCANCEL);
  });
  Command(IDM_MANUAL);
  EXPECT_TRUE(driver.Finished());
  EXPECT_EQ(Settings.WarnShowManual, 0u);

  // System information names what a helper asks for, ready to copy.
  std::string facts;
  driver.Then("System Information", [&](HWND box) {
    facts = ItemText(box, IDC_SYSTEM_TEXT);
    Press(box, IDC_SYSTEM_COPY);
    Press(box, IDOK);
  });
  Command(IDM_SYSTEM_INFORMATION);
  EXPECT_TRUE(driver.Finished());
  for (const std::string& line : {std::string("Version: 1.0, built "), std::string("Windows: "),
                                   "Program folder: " + ProgramFolder(), std::string("Theme: THEME_Standard.dll")})
    EXPECT_NE(facts.find(line), std::string::npos) << line << " in\n" << facts;
  ASSERT_TRUE(OpenClipboard(window()));
  const HANDLE copied = GetClipboardData(CF_TEXT);
  EXPECT_EQ(copied ? std::string(static_cast<const char*>(GlobalLock(copied))) : "", facts);
  if (copied) GlobalUnlock(copied);
  CloseClipboard();

  // A theme chosen in Setup shows on the toolbar at once, and months renamed
  // in the View menu.
  CopyText(Settings.MonthMarch, sizeof Settings.MonthMarch, "M\xE4rz & Co");
  driver.Then("Setup", [](HWND sheet) { Press(PropSheet_GetCurrentPageHwnd(sheet), IDC_SETUP_THEME); });
  driver.Then("Choose Theme", [](HWND box) {
    SendDlgItemMessageA(box, IDC_THEME_LIST, LB_SELECTSTRING, static_cast<WPARAM>(-1),
                        reinterpret_cast<LPARAM>("THEME_Ink.dll"));
    Press(box, IDOK);
  });
  driver.Then("Setup", [](HWND sheet) { Press(sheet, IDOK); });
  Command(IDM_SETUP);
  EXPECT_TRUE(driver.Finished());
  char theme[MAX_PATH] = "";
  GetModuleFileNameA(ThemeModule(), theme, sizeof theme);
  EXPECT_EQ(std::string(theme), ProgramFolder() + "THEME_Ink.dll");
  char march[64] = "";
  GetMenuStringA(menu, 312, march, sizeof march, MF_BYCOMMAND);
  EXPECT_EQ(std::string(march), "&M\xE4rz && Co");
}

// The toolbar's Edit buttons open the page sheet and the year sheet; what OK
// gives back goes into the calendar, marks it changed and becomes the
// defaults.
TEST_F(MainWindowTest, EditMonthAndYearPutTheSheetsDesignIntoTheCalendarAndTheDefaults) {
  DialogDriver driver;
  TypeOnTabAndOk(&driver, "Page", 4, IDC_PAGE_MARGIN, "17");
  Command(IDM_PAGE_JANUARY + 4);
  Command(IDM_EDIT_PAGE_BUTTON);  // the toolbar's button posts Edit month
  Pump(20000, [&] { return driver.Finished(); });
  EXPECT_TRUE(driver.Finished());
  MonthPage may;
  CalendarHeader header;
  ASSERT_TRUE(GetMonthPage(App.document, 4, &may) && GetHeader(App.document, &header));
  EXPECT_EQ(may.PageMargin, 17);
  EXPECT_EQ(header.Changed, 1);
  EXPECT_EQ(Settings.PageMargin, 17u) << "the next new page starts from this design";
  // The sheet's working copy keeps its blocks after OK.
  AllowBlocksLeftBehind((may.Picture ? 1 : 0) + (may.Events ? 1 : 0));

  // Edit year from the toolbar's button, on any page.
  TypeOnTabAndOk(&driver, "Year", 0, IDC_YAG_MARGIN, "9");
  Command(IDM_PAGE_COVER);
  Command(IDM_EDIT_YEAR_BUTTON);
  Pump(20000, [&] { return driver.Finished(); });
  ASSERT_TRUE(GetHeader(App.document, &header));
  EXPECT_EQ(header.YagPageMargin, 9);
  EXPECT_EQ(Settings.YagPageMargin, 9u) << "the next new calendar starts from this design";
}

TEST_F(MainWindowTest, TheStripFollowsTheWindowAndThePageFitsItsView) {
  SetWindowPos(window(), nullptr, 0, 0, 400, 900, SWP_NOMOVE | SWP_NOZORDER);
  RECT client, bar;
  GetClientRect(window(), &client);
  GetWindowRect(FindWindowExA(window(), nullptr, "QuernalBar", nullptr), &bar);
  EXPECT_EQ(bar.right - bar.left, client.right) << "the strip follows the window's width";
  // At 100 percent the whole page shows: 95 percent of the view between
  // the strip and the horizontal scroll bar.
  const int view = client.bottom - (bar.bottom - bar.top) - GetSystemMetrics(SM_CYHSCROLL);
  SCROLLINFO info{sizeof info, SIF_ALL, 0, 0, 0, 0, 0};
  GetScrollInfo(GetDlgItem(window(), kVerticalScrollId), SB_CTL, &info);
  EXPECT_EQ(info.nMax - 8, view * 95 / 100);
  // Dragged near the work area's left edge, the window lands on it.
  RECT work;
  SystemParametersInfoA(SPI_GETWORKAREA, 0, &work, 0);
  RECT dragged{work.left + 5, work.top + 200, work.left + 605, work.top + 660};
  SendMessageA(window(), WM_MOVING, WMSZ_LEFT, reinterpret_cast<LPARAM>(&dragged));
  EXPECT_EQ(dragged.left, work.left);
}

// After Save as, Ctrl+0 (as the menu says) opens the Open dialog where the
// calendar was saved (where a first dialog starts is the layout's own test).
TEST_F(MainWindowTest, ControlZeroOpensWhereTheLastFileDialogEnded) {
  std::string openedIn;
  DialogDriver driver;
  driver.Then("Save As", [&](HWND dialog) { ChooseFile(dialog, dir_.File("Kept.CLN")); });
  Command(IDM_SAVE_AS);
  driver.Then("Open", [&](HWND dialog) {
    openedIn = FolderShown(dialog);
    Press(dialog, IDCANCEL);
  });
  ControlKey(window(), '0');
  EXPECT_TRUE(driver.Finished()) << "Ctrl+0 opened no Open dialog";
  EXPECT_EQ(WithoutTrailingSlash(openedIn), dir_.path());
}

namespace {

// Drops `path` on `window` as the shell does.
void Drop(HWND window, const std::string& path) {
  const size_t size = sizeof(DROPFILES) + path.size() + 2;
  HGLOBAL drop = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, size);
  auto* files = static_cast<DROPFILES*>(GlobalLock(drop));
  files->pFiles = sizeof(DROPFILES);
  std::memcpy(reinterpret_cast<char*>(files) + sizeof(DROPFILES), path.c_str(), path.size());
  GlobalUnlock(drop);
  SendMessageA(window, WM_DROPFILES, reinterpret_cast<WPARAM>(drop), 0);
}

}  // namespace

// A calendar in a folder deep enough that its path has 245 characters saves
// like any other, and a file another program changed since is not replaced
// without asking.
TEST_F(MainWindowTest, SavesReachLongPathsAndAskBeforeReplacingAChangedFile) {
  // File, Save; what a message box said (answered with `answer`), or "".
  const auto save = [this](int answer) {
    std::string asked;
    DialogDriver driver;
    driver.Then("Message", [&](HWND box) {
      asked = MessageText(box);
      Press(box, answer);
    });
    Command(IDM_SAVE);
    return asked;
  };
  std::string folder = dir_.path();
  while (folder.size() < 226) {
    folder += "\\" + std::string(std::min<size_t>(60, 236 - folder.size() - 1), 'd');
    ASSERT_TRUE(CreateDirectoryA(folder.c_str(), nullptr)) << folder.size();
  }
  App.path = folder + "\\" + std::string(245 - folder.size() - 5, 'c') + ".CLN";
  ASSERT_EQ(App.path.size(), 245u);
  EXPECT_EQ(save(IDOK), "");
  ASSERT_TRUE(FileExists(App.path));
  const std::string saved = ReadFile(App.path);

  // Another program writes the file; No keeps what it wrote, Yes replaces it.
  for (const int answer : {IDNO, IDYES}) {
    WriteFile(App.path, "another program's calendar");
    const std::string asked = save(answer);
    EXPECT_EQ(asked.rfind("This calendar's file has been changed by another program", 0), 0u) << asked;
    EXPECT_EQ(ReadFile(App.path) == saved, answer == IDYES);
  }
  // Unchanged since: saved without a question.
  EXPECT_EQ(save(IDYES), "");
  EXPECT_EQ(ReadFile(App.path), saved);
}

// What is dropped goes where it belongs: a calendar opens (after the
// question about unsaved changes), a photograph becomes the cover's picture
// on the cover, and the year page says it takes none.
TEST_F(MainWindowTest, DropsOpenCalendarsAndGivePicturesToThePageShown) {
  const std::string other = dir_.File("Other.cln");
  CalendarDocument saved = CreateCalendar(2031, 7);
  SilentProgress progress;
  ASSERT_EQ(SaveCalendar(&progress, other.c_str(), saved), 1);
  FreeCalendar(saved);
  CalendarHeader header;
  ASSERT_TRUE(GetHeader(App.document, &header));
  header.Changed = 1;
  ASSERT_TRUE(PutHeader(App.document, &header));

  std::vector<std::string> said;
  DialogDriver driver;
  const auto answer = [&](int button) {
    driver.Then("Message", [&said, button](HWND box) {
      said.push_back(MessageText(box));
      Press(box, button);
    });
  };
  answer(IDNO);
  Drop(window(), other);
  ASSERT_EQ(said.size(), 1u) << "the question about unsaved changes (its words: the end-to-end main window story)";
  ASSERT_TRUE(GetHeader(App.document, &header));
  EXPECT_EQ(header.Year, 2031);
  EXPECT_EQ(App.path, other);

  Command(IDM_PAGE_COVER);
  Drop(window(), ProgramFolder() + "Meadow.jpg");
  ASSERT_TRUE(GetHeader(App.document, &header));
  ASSERT_NE(header.CoverPicture, 0u);
  EXPECT_EQ(BlockLock(header.CoverPicture).as<BitmapInfoHeader>()->biWidth, 640);
  EXPECT_EQ(header.CoverPictureShowPicture, 1);
  EXPECT_EQ(header.Changed, 1);

  Command(IDM_PAGE_YEAR);
  answer(IDOK);
  Drop(window(), ProgramFolder() + "Meadow.jpg");
  ASSERT_EQ(said.size(), 2u);
  EXPECT_EQ(said[1], "The year at a glance has no picture. Drop the picture on a month page or on the cover.");
}

// A photograph dropped on the window, cut, pasted onto another month, and a
// bitmap another program copied pasted too; the commands are there only
// where they can act.
TEST_F(MainWindowTest, PicturesComeByDropAndGoThroughTheClipboard) {
  BlockHandle art = DibCreate(8, 6, 8);
  {
    BlockLock lock(art);
    RgbQuad* table = DibColourTable(lock.bytes());
    for (int i = 0; i < 256; ++i) table[i] = {uint8_t(i), uint8_t(255 - i), uint8_t(i / 2), 0};
    for (int i = 0; i < 8 * 6; ++i) DibBits(lock.bytes())[i] = uint8_t(i * 5);
  }
  const std::string file = dir_.File("Poster.bmp"), broken = dir_.File("Broken.jpg");
  ASSERT_TRUE(WriteBmpFile(file.c_str(), art));
  WriteFile(broken, "not a picture, though named like one");
  EXPECT_TRUE(Greyed(IDM_CUT) && Greyed(IDM_COPY)) << "May has no picture yet";
  // Paste follows what the clipboard holds: text is no picture.
  ASSERT_TRUE(OpenClipboard(window()));
  EmptyClipboard();
  HGLOBAL text = GlobalAlloc(GMEM_MOVEABLE, 5);
  std::memcpy(GlobalLock(text), "text", 5);
  GlobalUnlock(text);
  SetClipboardData(CF_TEXT, text);
  CloseClipboard();
  Pump(300);
  EXPECT_TRUE(Greyed(IDM_PASTE));

  // A palette picture brings the warning, whose check box stops it.
  DialogDriver driver;
  driver.Then("Message", [](HWND box) {
    SetCheck(box, IDC_PALETTE_AGAIN, false);
    Press(box, IDOK);
  });
  Drop(window(), file);
  EXPECT_TRUE(driver.Finished()) << "no palette warning";
  EXPECT_EQ(Settings.WarnPaletteColour, 0u);
  MonthPage may;
  ASSERT_TRUE(GetMonthPage(App.document, 4, &may));
  ASSERT_NE(may.Picture, 0u);
  const std::vector<uint8_t> picture = BlockBytes(may.Picture);
  EXPECT_EQ(picture, BlockBytes(art));
  EXPECT_FALSE(Greyed(IDM_CUT) || Greyed(IDM_COPY));
  CalendarHeader header;
  ASSERT_TRUE(GetHeader(App.document, &header));
  EXPECT_EQ(header.Changed, 1);

  // Cut: on the clipboard with its palette, gone from May; pasted on June.
  Command(IDM_CUT);
  EXPECT_TRUE(IsClipboardFormatAvailable(CF_PALETTE));
  ASSERT_TRUE(GetMonthPage(App.document, 4, &may));
  EXPECT_EQ(may.Picture, 0u);
  EXPECT_TRUE(Greyed(IDM_COPY));
  EXPECT_FALSE(Greyed(IDM_PASTE));
  Command(IDM_PAGE_JANUARY + 5);
  Command(IDM_PASTE);
  MonthPage june;
  ASSERT_TRUE(GetMonthPage(App.document, 5, &june));
  EXPECT_EQ(BlockBytes(june.Picture), picture) << "the same picture, palette and all";

  // A bitmap from another program comes in as true colour.
  HDC screen = GetDC(nullptr);
  HBITMAP bitmap = CreateCompatibleBitmap(screen, 5, 4);
  ReleaseDC(nullptr, screen);
  ASSERT_TRUE(OpenClipboard(window()));
  EmptyClipboard();
  SetClipboardData(CF_BITMAP, bitmap);
  CloseClipboard();
  Pump(300);
  EXPECT_FALSE(Greyed(IDM_PASTE)) << "a bitmap from another program";
  Command(IDM_PAGE_JANUARY + 6);
  Command(IDM_PASTE);
  MonthPage july;
  ASSERT_TRUE(GetMonthPage(App.document, 6, &july));
  ASSERT_NE(july.Picture, 0u);
  {
    BlockLock lock(july.Picture);
    EXPECT_EQ(lock.as<BitmapInfoHeader>()->biWidth, 5);
    EXPECT_EQ(lock.as<BitmapInfoHeader>()->biBitCount, 24);
  }

  // A cut-out another program copied with its alpha (CF_DIBV5): what shows
  // through is August's background.
  MonthPage august;
  ASSERT_TRUE(GetMonthPage(App.document, 7, &august));
  august.PageBackgroundColour = RGB(0, 0, 255);
  ASSERT_TRUE(PutMonthPage(App.document, 7, &august));
  HGLOBAL cutOut = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, sizeof(BITMAPV5HEADER) + 8);
  auto* v5 = static_cast<BITMAPV5HEADER*>(GlobalLock(cutOut));
  *v5 = BITMAPV5HEADER{sizeof(BITMAPV5HEADER), 2, 1, 1, 32, BI_BITFIELDS};
  v5->bV5RedMask = 0x00FF0000, v5->bV5GreenMask = 0x0000FF00, v5->bV5BlueMask = 0x000000FF;
  v5->bV5AlphaMask = 0xFF000000, v5->bV5CSType = LCS_sRGB;
  const uint32_t pixels[2] = {0x00FF0000, 0xFF00FF00};  // a red nobody sees, an opaque green
  std::memcpy(v5 + 1, pixels, sizeof pixels);
  GlobalUnlock(cutOut);
  ASSERT_TRUE(OpenClipboard(window()));
  EmptyClipboard();
  SetClipboardData(CF_DIBV5, cutOut);
  CloseClipboard();
  Command(IDM_PAGE_JANUARY + 7);
  Command(IDM_PASTE);
  ASSERT_TRUE(GetMonthPage(App.document, 7, &august));
  EXPECT_EQ(BlockBytes(august.Picture).size(), 40u + 8u);
  {
    BlockLock lock(august.Picture);
    const uint8_t* bgr = DibBits(lock.bytes());
    EXPECT_EQ(std::vector<uint8_t>(bgr, bgr + 6), (std::vector<uint8_t>{255, 0, 0, 0, 255, 0}));
  }

  // Not on the cover; and a file that is no picture, or a JPEG cut short,
  // is said so.
  Command(IDM_PAGE_COVER);
  EXPECT_TRUE(Greyed(IDM_CUT) && Greyed(IDM_COPY) && Greyed(IDM_PASTE));
  Command(IDM_PAGE_JANUARY + 4);
  const std::string cut = dir_.File("Cut.jpg");
  WriteFile(cut, ReadFile(ProgramFolder() + "Meadow.jpg").substr(0, 2000));
  const struct {
    std::string file, said;
  } refused[] = {{broken, "The file you dropped is not a picture Quernal can read."},
                 {cut, "There has been an error loading the image"}};
  for (const auto& r : refused) {
    std::string said;
    driver.Then("Message", [&](HWND box) {
      said = MessageText(box);
      Press(box, IDOK);
    });
    Drop(window(), r.file);
    EXPECT_EQ(said.rfind(r.said, 0), 0u) << said;
  }
  ASSERT_TRUE(GetMonthPage(App.document, 4, &may));
  EXPECT_EQ(may.Picture, 0u);
  GlobalBlockFree(art);
}
