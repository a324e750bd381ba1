// The month page's property sheet driven as a user drives it: every tab,
// the choosers it opens, OK and Cancel, and the quirks users know.
#include <windows.h>
#include <commctrl.h>
#include <commdlg.h>
#include <dlgs.h>
#include <prsht.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "base/dib.h"
#include "base/program_win32.h"
#include "base/text.h"
#include "calendar/calendar_model.h"
#include "config/settings.h"
#include "dialog_driver.h"
#include "editors/page_sheet_win32.h"
#include "editors/year_sheet_win32.h"
#include "editors/picture_tab_win32.h"
#include "pictures/image_files.h"
#include "pictures/resampler.h"
#include "print/printer_win32.h"
#include "res/editor_dialog_ids.h"
#include "res/page_sheet_ids.h"
#include "res/picture_dialog_ids.h"
#include "res/string_ids.h"
#include "res/year_sheet_ids.h"
#include "test_support.h"

namespace {

// Brings tab `index` to the front and returns it.
HWND ShowTab(HWND sheet, int index) {
  PropSheet_SetCurSel(sheet, nullptr, index);
  return CurrentTab(sheet);
}

// F1 on the tab `g_helpTab`, as the system turns it into a help request.
HWND g_helpTab;
void CALLBACK AskForHelp(HWND, UINT, UINT_PTR timer, DWORD) {
  KillTimer(nullptr, timer);
  HELPINFO help{sizeof help, HELPINFO_WINDOW, IDC_HEAD_FONT, GetDlgItem(g_helpTab, IDC_HEAD_FONT), 0, {0, 0}};
  SendMessageA(g_helpTab, WM_HELP, 0, reinterpret_cast<LPARAM>(&help));
}

class PageSheetTest : public QuernalTest {
 protected:
  void SetUp() override {
    QuernalTest::SetUp();
    CopyText(Settings.ApplicationPath, sizeof Settings.ApplicationPath, (dir_.path() + "\\").c_str());
    WriteFile(dir_.File("General.CDF"), "0101 New Year\n");
    WriteFile(dir_.File("Birthdays.CDF"), "0412 Ann\n");
    WriteFile(dir_.File(".Hidden.CDF"), "");
    document_ = CreateCalendar(2027, 3);
    ASSERT_TRUE(GetMonthPage(document_, 3, &page_));
  }
  void TearDown() override {
    FreeCalendar(document_);
    QuernalTest::TearDown();
  }
  CalendarDocument document_ = 0;
  MonthPage page_;
};

}  // namespace

// The sheet opens on the tab applied last, with no Apply button; the Events
// tab offers the lists beside the program; OK gives the page the list chosen
// and the tab shown last. (A font, a colour, a caption and a picture chosen
// through the real program are the end-to-end sheets story's.)
TEST_F(PageSheetTest, OkGivesThePageTheListChosenAndTheTabShownLast) {
  page_.LastPropertyPage = 1;
  CopyText(page_.DaysName, sizeof page_.DaysName, "Birthdays");
  DialogDriver driver;
  driver.Then("Page", [](HWND sheet) {
    EXPECT_EQ(TabCtrl_GetCurSel(PropSheet_GetTabControl(sheet)), 1) << "the tab applied last";
    HWND apply = GetDlgItem(sheet, 0x3021);  // the sheet's Apply button, if it made one
    EXPECT_TRUE(!apply || !IsWindowVisible(apply));
    HWND events = ShowTab(sheet, 2);
    EXPECT_EQ(Entries(events, IDC_DAYS_LIST), (std::vector<std::string>{"Birthdays", "General"}));
    EXPECT_EQ(ItemText(events, IDC_DAYS_LIST), "Birthdays");
    SendDlgItemMessageA(events, IDC_DAYS_LIST, CB_SETCURSEL, 1, 0);
    Press(sheet, IDOK);
  });
  ASSERT_TRUE(EditPageProperties(nullptr, &page_));
  EXPECT_TRUE(driver.Finished());
  EXPECT_STREQ(page_.DaysName, "General");
  EXPECT_NE(page_.Events, 0u);
  EXPECT_EQ(page_.LastPropertyPage, 2) << "the tab shown last";
  EXPECT_EQ(page_.Edited, 1);
  ASSERT_TRUE(PutMonthPage(document_, 3, &page_));
  AllowBlocksLeftBehind(1);  // the working copy's event list stays allocated after OK
}

// The page's Picture tab and the cover tab through the real choosers: the
// paint program missing, then painting; a file chosen in the picture-open
// dialog (on the page a monochrome one and the palette warning, on the
// cover a damaged one and message 105). Cancel leaves the record byte for
// byte as it was; painted again and OK, it keeps the painted picture.
TEST_F(PageSheetTest, ThePictureTabsChooseAndPaintAndCancelOrKeep) {
  CalendarHeader header;
  ASSERT_TRUE(GetHeader(document_, &header));
  if (page_.Picture) GlobalBlockFree(page_.Picture);
  page_.Picture = MakePatternDib(40, 30, 24, 5);
  header.CoverPicture = MakePatternDib(40, 30, 24, 5);
  page_.LastPropertyPage = 3, header.LastYearPropertyPage = 1;
  page_.PictureShowPicture = header.CoverPictureShowPicture = 1;
  BlockHandle lines = DibCreate(30, 20, 1);
  const std::string lineFile = dir_.File("Lines.bmp"), broken = dir_.File("Broken.jpg");
  ASSERT_TRUE(WriteBmpFile(lineFile.c_str(), lines));
  GlobalBlockFree(lines);
  WriteFile(broken, "not a picture");
  const struct {
    const char* sheet;
    std::function<bool()> edit;
    void* record;
    size_t size;
    BlockHandle* picture;
    int paint;
    std::string file;  // chosen with "Select...", and what is said of it
    int said, saidIn;
  } tabs[] = {{"Page", [&] { return EditPageProperties(nullptr, &page_); }, &page_, sizeof page_, &page_.Picture,
               IDC_PICTURE_PAINT, lineFile, IDS_PALETTE_WARNING, IDC_PALETTE_TEXT},
              {"Year", [&] { return EditYearProperties(nullptr, &header); }, &header, sizeof header,
               &header.CoverPicture, IDC_COVER_PAINT, broken, IDS_IMAGE_LOAD_FAILED, 0xFFFF}};
  for (const auto& t : tabs) {
    const std::vector<uint8_t> before(static_cast<uint8_t*>(t.record), static_cast<uint8_t*>(t.record) + t.size);
    const std::vector<uint8_t> pixels = BlockBytes(*t.picture);
    CopyText(Settings.PaintbrushPath, sizeof Settings.PaintbrushPath, (dir_.path() + "\\none.exe").c_str());
    std::string said[2];
    DialogDriver driver;
    driver.Then(t.sheet, [&](HWND sheet) { Press(CurrentTab(sheet), t.paint); });
    driver.Then("Message", [&](HWND box) {
      said[0] = MessageText(box);
      CopyText(Settings.PaintbrushPath, sizeof Settings.PaintbrushPath, (ProgramFolder() + "stand_in_paint.exe").c_str());
      Press(box, IDOK);
    });
    driver.Then(t.sheet, [&](HWND sheet) { Press(CurrentTab(sheet), t.paint); });
    driver.Then(t.sheet, [&](HWND sheet) { Press(CurrentTab(sheet), IDC_PICTURE_SELECT); });
    ChoosePictureFile(&driver, t.file);
    driver.Then("Message", [&](HWND box) {
      said[1] = ItemText(box, t.saidIn);
      Press(box, IDOK);
    });
    driver.Then(t.sheet, [&](HWND sheet) { Press(sheet, IDCANCEL); });
    const uint32_t live = GlobalBlockLiveCount();
    EXPECT_FALSE(t.edit()) << t.sheet;
    EXPECT_TRUE(driver.Finished()) << t.sheet;
    EXPECT_EQ(said[0], StringTableText(IDS_NO_PAINT_PROGRAM));
    EXPECT_EQ(said[1], StringTableText(t.said));
    EXPECT_EQ(std::memcmp(t.record, before.data(), t.size), 0) << t.sheet;
    EXPECT_EQ(BlockBytes(*t.picture), pixels) << t.sheet;
    EXPECT_EQ(GlobalBlockLiveCount(), live) << t.sheet << ": the working copy and its pictures are freed";

    driver.Then(t.sheet, [&](HWND sheet) { Press(CurrentTab(sheet), t.paint); });
    driver.Then(t.sheet, [](HWND sheet) { Press(sheet, IDOK); });
    ASSERT_TRUE(t.edit()) << t.sheet;
    EXPECT_TRUE(driver.Finished()) << t.sheet;
    const std::vector<uint8_t> painted = BlockBytes(*t.picture);
    EXPECT_EQ(DibBits(const_cast<uint8_t*>(painted.data()))[0], 0x56) << "as the paint program left it";
    EXPECT_EQ(std::memcmp(DibBits(const_cast<uint8_t*>(painted.data())) + 3,
                          DibBits(const_cast<uint8_t*>(pixels.data())) + 3, 40 * 3 - 3), 0);
  }
  ASSERT_TRUE(PutMonthPage(document_, 3, &page_) && PutHeader(document_, &header));
  AllowBlocksLeftBehind(3);  // the working copies' pictures and event list stay allocated after OK
}

// A page from a damaged file: a tab number out of range opens the first
// tab, and a picture handle that is no block cannot be copied (message 106).
// On the way, F1 on a tab asks for the manual (with no browser to be had,
// the program says where the manual is).
TEST_F(PageSheetTest, ADamagedPageOpensOnTheFirstTabOrNotAtAll) {
  page_.LastPropertyPage = 77;
  HKEY browsers;
  ASSERT_EQ(RegCreateKeyExA(HKEY_CURRENT_USER, "Software\\Wine\\WineBrowser", 0, nullptr, 0, KEY_SET_VALUE, nullptr,
                            &browsers, nullptr),
            ERROR_SUCCESS);
  RegSetValueExA(browsers, "Browsers", 0, REG_SZ, reinterpret_cast<const BYTE*>("quernal-none"), 13);
  std::string manual;
  DialogDriver driver;
  driver.Then("Page", [](HWND sheet) {
    EXPECT_EQ(TabCtrl_GetCurSel(PropSheet_GetTabControl(sheet)), 0);
    // A message that carries a pointer cannot be posted: the help request
    // is sent from a timer of its own, outside this step.
    g_helpTab = CurrentTab(sheet);
    SetTimer(nullptr, 0, 10, AskForHelp);
  });
  driver.Then("Message", [&](HWND box) {
    manual = MessageText(box);
    Press(box, IDOK);
  });
  driver.Then("Page", [](HWND sheet) { Press(sheet, IDCANCEL); });
  EXPECT_FALSE(EditPageProperties(nullptr, &page_));
  RegDeleteValueA(browsers, "Browsers");
  RegCloseKey(browsers);
  EXPECT_EQ(manual.rfind("The manual could not be shown, because no web browser could be started.", 0), 0u) << manual;
  EXPECT_NE(manual.find(ProgramFolder() + "html\\manual.htm"), std::string::npos) << manual;
  const BlockHandle picture = page_.Picture;
  page_.Picture = 0xDEAD;
  std::string said;
  driver.Then("Message", [&](HWND box) {
    said = MessageText(box);
    Press(box, IDOK);
  });
  EXPECT_FALSE(EditPageProperties(nullptr, &page_));
  EXPECT_TRUE(driver.Finished());
  EXPECT_EQ(said, StringTableText(IDS_MEMORY_FAILED));
  EXPECT_EQ(page_.Picture, 0xDEADu);
  page_.Picture = picture;
}

// The preview: the picture as large as fits, centred, framed in the button
// shadow's colour; nothing when the button is greyed.
TEST(PicturePreview, FitsCentresAndFrames) {
  const struct {
    int w, h, bits;
    bool disabled;
    RECT frame;  // expected, in the 120 x 120 item
  } cases[] = {
      {200, 100, 24, false, {0, 30, 120, 90}},
      {50, 100, 1, false, {30, 0, 90, 120}},
      {7, 3, 8, false, {0, 34, 119, 85}},  // 17.142 times: thousandths round down
      {200, 100, 24, true, {0, 0, 0, 0}},
  };
  for (const auto& c : cases) {
    BlockHandle dib = DibCreate(c.w, c.h, static_cast<uint16_t>(c.bits));
    {
      BlockLock lock(dib);
      const uint64_t stride = DibRowStride(c.w, c.bits);
      std::memset(DibBits(lock.bytes()), c.bits == 24 ? 0x40 : 0, stride * c.h);
    }
    HDC dc = CreateCompatibleDC(nullptr);
    BITMAPINFO info{};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), 120, -120, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* pixels = nullptr;
    HBITMAP target = CreateDIBSection(dc, &info, DIB_RGB_COLORS, &pixels, nullptr, 0);
    SelectObject(dc, target);
    PatBlt(dc, 0, 0, 120, 120, WHITENESS);
    DRAWITEMSTRUCT item{ODT_BUTTON, IDC_PICTURE_SAMPLE, 0, ODA_DRAWENTIRE,
                        c.disabled ? static_cast<UINT>(ODS_DISABLED) : 0u, nullptr, dc, {0, 0, 120, 120}, 0};
    DrawPicturePreview(&item, dib);
    SetViewportOrgEx(dc, 0, 0, nullptr);
    const COLORREF shadow = GetSysColor(COLOR_BTNSHADOW);
    const RECT& f = c.frame;
    if (c.disabled) {
      EXPECT_EQ(GetPixel(dc, 60, 60), RGB(255, 255, 255));
    } else {
      EXPECT_EQ(GetPixel(dc, f.left, f.top), shadow) << c.w;
      EXPECT_EQ(GetPixel(dc, f.right - 1, f.bottom - 1), shadow) << c.w;
      EXPECT_NE(GetPixel(dc, (f.left + f.right) / 2, (f.top + f.bottom) / 2), RGB(255, 255, 255)) << c.w;
      // Outside the frame the item is untouched.
      EXPECT_EQ(GetPixel(dc, f.left > 0 ? f.left - 1 : 60, f.top > 0 ? f.top - 1 : 119), RGB(255, 255, 255)) << c.w;
    }
    DeleteDC(dc);
    DeleteObject(target);
    GlobalBlockFree(dib);
  }
}

namespace {

// The crop dialog's picture area, and where a point of the picture shows
// in it: the picture as large as fits, centred.
HWND CropArea(HWND dialog) { return GetDlgItem(dialog, IDC_CROP_AREA); }
POINT OnScreen(HWND dialog, int x, int y) {
  RECT r;
  GetClientRect(CropArea(dialog), &r);
  const int f = std::min(r.right * 1000 / 400, r.bottom * 1000 / 300);
  return {(r.right - 400 * f / 1000) / 2 + x * f / 1000, (r.bottom - 300 * f / 1000) / 2 + y * f / 1000};
}
void Drag(HWND dialog, POINT from, int dx, int dy) {
  HWND area = CropArea(dialog);
  SendMessageA(area, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(from.x, from.y));
  SendMessageA(area, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(from.x + dx / 2, from.y + dy / 2));
  SendMessageA(area, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(from.x + dx, from.y + dy));
  SendMessageA(area, WM_LBUTTONUP, 0, MAKELPARAM(from.x + dx, from.y + dy));
}
void Key(HWND dialog, WPARAM key, bool shift) {
  BYTE keys[256];
  GetKeyboardState(keys);
  keys[VK_SHIFT] = shift ? 0x80 : 0;
  SetKeyboardState(keys);
  SendMessageA(CropArea(dialog), WM_KEYDOWN, key, 0);
  keys[VK_SHIFT] = 0;
  SetKeyboardState(keys);
}
// How many pixels of the print note are drawn in the warning colour.
int WarningPixels(HWND tab) {
  HWND note = GetDlgItem(tab, IDC_PICTURE_PRINT);
  RECT r;
  GetClientRect(note, &r);
  HDC screen = GetDC(nullptr), dc = CreateCompatibleDC(screen);
  HBITMAP bitmap = CreateCompatibleBitmap(screen, r.right, r.bottom);
  HGDIOBJ old = SelectObject(dc, bitmap);
  DRAWITEMSTRUCT item{ODT_STATIC, IDC_PICTURE_PRINT, 0, ODA_DRAWENTIRE, 0, note, dc, r, 0};
  SendMessageA(tab, WM_DRAWITEM, IDC_PICTURE_PRINT, reinterpret_cast<LPARAM>(&item));
  int warning = 0;
  for (int y = 0; y < r.bottom; ++y)
    for (int x = 0; x < r.right; ++x) warning += GetPixel(dc, x, y) == RGB(192, 0, 0);
  SelectObject(dc, old);
  DeleteObject(bitmap);
  DeleteDC(dc);
  ReleaseDC(nullptr, screen);
  return warning;
}

}  // namespace

// The Picture tab says how sharp the picture prints on the printer's page
// (A4 without one), and "Crop..." crops it to the shape of its box there:
// the frame dragged and keyed, Cancel, Whole box and OK.
TEST_F(PageSheetTest, ThePictureCropsToItsBoxAndSaysHowSharpItPrints) {
  if (page_.Picture) GlobalBlockFree(page_.Picture);
  page_.Picture = MakePatternDib(400, 300, 24, 7);
  page_.LastPropertyPage = 3;
  page_.PictureShowPicture = page_.PictureDropShadow = 1;
  page_.PageMargin = page_.Gutter = 2;
  page_.PictureExteriorPadding = page_.PictureShadowOffset = 5;
  const std::vector<uint8_t> original = BlockBytes(page_.Picture);
  const HDC printer = PrinterDC;
  PrinterDC = nullptr;
  // A4 at 300 dpi, 2480 x 3508: the box 168,168 to 2243,1483 (2075 x 1315).
  // 400 x 300 fits at 4383 thousandths, 1753 pixels across: 68 ppi. With a
  // padding of 25 % the box is 1171 x 411 and the scale 1370: 548 across,
  // 218 ppi.
  std::string notes[3];
  int warnings[2];
  DialogDriver driver;
  driver.Then("Page", [&](HWND sheet) {
    HWND tab = CurrentTab(sheet);
    notes[0] = ItemText(tab, IDC_PICTURE_PRINT);
    warnings[0] = WarningPixels(tab);
    SetDlgItemTextA(tab, IDC_PICTURE_EXTERIOR, "25");
    notes[1] = ItemText(tab, IDC_PICTURE_PRINT);
    warnings[1] = WarningPixels(tab);
    SetDlgItemTextA(tab, IDC_PICTURE_EXTERIOR, "5");
    Press(tab, IDC_PICTURE_CROP);
  });
  // The frame starts as the whole box, centred: 400 x 1315 / 2075 rounded.
  std::string kept[3];
  driver.Then("Crop Picture", [&](HWND dialog) {
    kept[0] = ItemText(dialog, IDC_CROP_KEEPS);
    Drag(dialog, OnScreen(dialog, 200, 150), 0, 40);
    Press(dialog, IDCANCEL);
  });
  driver.Then("Page", [&](HWND sheet) { Press(CurrentTab(sheet), IDC_PICTURE_CROP); });
  driver.Then("Crop Picture", [&](HWND dialog) {
    // Shift+left twice makes it 16 pixels narrower; the bottom right corner
    // dragged in, narrower still; Whole box makes it whole again.
    Key(dialog, VK_LEFT, true);
    Key(dialog, VK_LEFT, true);
    kept[1] = ItemText(dialog, IDC_CROP_KEEPS);
    Drag(dialog, OnScreen(dialog, 392, 271), -60, 0);
    kept[2] = ItemText(dialog, IDC_CROP_KEEPS);
    Press(dialog, IDC_CROP_WHOLE);
  });
  driver.Then("Crop Picture", [&](HWND dialog) {
    // Dragged down as far as it goes (its top at 300 - 253 = 47), then the
    // up arrow: a hundredth of 400 higher, 43.
    Drag(dialog, OnScreen(dialog, 200, 150), 0, 400);
    Key(dialog, VK_UP, false);
    Press(dialog, IDOK);
  });
  driver.Then("Page", [&](HWND sheet) {
    notes[2] = ItemText(CurrentTab(sheet), IDC_PICTURE_PRINT);
    Press(sheet, IDOK);
  });
  ASSERT_TRUE(EditPageProperties(nullptr, &page_));
  EXPECT_TRUE(driver.Finished());
  PrinterDC = printer;
  const std::string a4 = StringTableText(IDS_PRINTS_WITHOUT_PRINTER);
  EXPECT_EQ(notes[0], "Prints at 68 ppi" + a4 + ": may print blurry");
  EXPECT_GT(warnings[0], 20);
  EXPECT_EQ(notes[1], "Prints at 218 ppi" + a4);
  EXPECT_EQ(warnings[1], 0);
  EXPECT_EQ(kept[0], "Keeps 400 x 253 of 400 x 300 pixels");
  EXPECT_EQ(kept[1], "Keeps 384 x 243 of 400 x 300 pixels");
  EXPECT_NE(kept[2], kept[1]) << "the corner dragged in";
  // Filling the box: 2075 / 400 and 1315 / 253 thousandths, the smaller
  // 5187, 2074 pixels across: 57 ppi.
  EXPECT_EQ(notes[2], "Prints at 57 ppi" + a4 + ": may print blurry");
  // The crop is rows 43 to 295 of the picture, whole across (which pixels
  // those are is the crop's own native test).
  ASSERT_EQ(BlockBytes(page_.Picture).size(), 40u + 1200u * 253);
  uint8_t first[1200], top[1200];
  DibRowBgr(original.data(), 43, first);
  DibRowBgr(BlockBytes(page_.Picture).data(), 0, top);
  EXPECT_EQ(std::memcmp(first, top, sizeof top), 0);
  ASSERT_TRUE(PutMonthPage(document_, 3, &page_));
  AllowBlocksLeftBehind(2);  // the working copy's picture and event list stay allocated after OK
}
