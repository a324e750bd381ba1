// The year's property sheet driven as a user drives it: the year with its
// arrows and "Use current year", the fonts of the year at a glance, and the
// cover's picture, title and placement; OK and Cancel.
#include <windows.h>
#include <commctrl.h>
#include <commdlg.h>
#include <dlgs.h>
#include <prsht.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "base/dib.h"
#include "base/program_win32.h"
#include "calendar/calendar_model.h"
#include "dialog_driver.h"
#include "editors/year_sheet_win32.h"
#include "res/editor_dialog_ids.h"
#include "res/string_ids.h"
#include "res/year_sheet_ids.h"
#include "test_support.h"

namespace {


class YearSheetTest : public QuernalTest {
 protected:
  void SetUp() override {
    QuernalTest::SetUp();
    document_ = CreateCalendar(2027, 0);
    ASSERT_TRUE(GetHeader(document_, &header_));
  }
  void TearDown() override {
    PutHeader(document_, &header_);
    FreeCalendar(document_);
    QuernalTest::TearDown();
  }
  CalendarDocument document_ = 0;
  CalendarHeader header_;
};

}  // namespace

TEST_F(YearSheetTest, OkGivesTheHeaderTheYearItsPageAndItsCover) {
  header_.LastYearPropertyPage = 1;
  header_.UseCurrentYear = 0;
  header_.YagShadow = 0;
  header_.CoverPicturePlacement = 1;  // shown as centre, stored back as 147
  header_.CoverPictureShowPicture = 0;
  DialogDriver driver;
  driver.Then("Year", [](HWND sheet) {
    HWND cover = CurrentTab(sheet);
    EXPECT_EQ(TabCtrl_GetCurSel(PropSheet_GetTabControl(sheet)), 1) << "the tab shown last";
    EXPECT_TRUE(Checked(cover, IDC_PICTURE_CENTRE));
    Press(cover, IDC_PICTURE_SELECT);
  });
  // A phone's photograph taken held sideways (EXIF orientation 8).
  const char* photos = std::getenv("QUERNAL_TEST_PHOTOS");
  ASSERT_TRUE(photos) << "the prepared photographs";
  std::string photo = std::string(photos) + "\\MM8.jpg";
  std::replace(photo.begin(), photo.end(), '/', '\\');
  ChoosePictureFile(&driver, photo);
  driver.Then("Year", [](HWND sheet) {
    HWND cover = CurrentTab(sheet);
    EXPECT_TRUE(Checked(cover, IDC_PICTURE_SHOW)) << "a picture chosen is shown";
    SetDlgItemTextA(cover, IDC_COVER_TITLE, "Our year");
    Press(cover, IDC_COVER_TITLE_RIGHT_GLYPH);  // the glyph chooses its placement
  });
  driver.Then("Year", [](HWND sheet) {
    EXPECT_TRUE(Checked(CurrentTab(sheet), IDC_COVER_TITLE_RIGHT));
    PropSheet_SetCurSel(sheet, nullptr, 0);
    HWND year = CurrentTab(sheet);
    EXPECT_EQ(SendDlgItemMessageA(year, 10000 + IDC_YEAR_NUMBER, UDM_GETRANGE, 0, 0), MAKELONG(2583, 1583));
    EXPECT_EQ(ItemText(year, IDC_YEAR_NUMBER), "2027");
    EXPECT_EQ(ItemText(year, IDC_YEAR_ERA), "C.E.");
    SetDlgItemTextA(year, IDC_YEAR_NUMBER, "99999");
    SetCheck(year, IDC_YEAR_CURRENT, true);
  });
  driver.Then("Year", [](HWND sheet) {
    HWND year = CurrentTab(sheet);
    for (int id : {IDC_YEAR_NUMBER, 10000 + IDC_YEAR_NUMBER, IDC_YEAR_ERA}) EXPECT_FALSE(Enabled(year, id)) << id;
    SetCheck(year, IDC_YAG_SHADOW, true);
    Press(year, IDC_YAG_DATE_FONT);
  });
  driver.Then("Font", [](HWND box) {
    EXPECT_FALSE(IsWindowEnabled(GetDlgItem(box, IDC_FONT_SIZE))) << "the dates have no size";
    Press(box, IDOK);
  });
  driver.Then("Year", [](HWND sheet) {
    EXPECT_FALSE(Checked(CurrentTab(sheet), IDC_YAG_SHADOW)) << "the font box puts the drop shadow back";
    Press(sheet, IDOK);
  });
  ASSERT_TRUE(EditYearProperties(nullptr, &header_));
  EXPECT_TRUE(driver.Finished());
  EXPECT_EQ(header_.Year, 99999) << "typed beyond the arrows and greyed, still read back";
  EXPECT_EQ(header_.UseCurrentYear, 1);
  EXPECT_EQ(header_.YagShadow, 0);
  ASSERT_NE(header_.CoverPicture, 0u);
  EXPECT_EQ(BlockLock(header_.CoverPicture).as<BitmapInfoHeader>()->biWidth, 200) << "upright";
  EXPECT_EQ(BlockLock(header_.CoverPicture).as<BitmapInfoHeader>()->biHeight, 300);
  EXPECT_EQ(header_.CoverPictureShowPicture, 1);
  EXPECT_STREQ(header_.CoverTitle, "Our year");
  EXPECT_EQ(header_.CoverFontPlacement, 2);
  EXPECT_EQ(header_.CoverPicturePlacement, 147);
  EXPECT_EQ(header_.LastYearPropertyPage, 0);
  EXPECT_EQ(header_.YearEdited, 1);
  AllowBlocksLeftBehind(1);  // the working copy's cover picture stays allocated after OK
}

// A picture that does not load leaves the cover without one and "Show
// picture" cleared; Cancel then leaves the header as it was, cover and all.
TEST_F(YearSheetTest, CancelLeavesTheHeaderAndItsCoverAsTheyWere) {
  header_.CoverPicture = MakePatternDib(30, 20, 24, 9);
  header_.CoverPictureShowPicture = 1;
  header_.LastYearPropertyPage = 1;
  const CalendarHeader before = header_;
  const std::vector<uint8_t> pixels = BlockBytes(header_.CoverPicture);
  const std::string broken = dir_.File("Broken.jpg");
  WriteFile(broken, "not a picture");
  std::string said;
  DialogDriver driver;
  driver.Then("Year", [](HWND sheet) {
    EXPECT_TRUE(Checked(CurrentTab(sheet), IDC_PICTURE_SHOW));
    Press(CurrentTab(sheet), IDC_PICTURE_SELECT);
  });
  ChoosePictureFile(&driver, broken);
  driver.Then("Message", [&](HWND box) {
    said = MessageText(box);
    Press(box, IDOK);
  });
  driver.Then("Year", [](HWND sheet) {
    EXPECT_FALSE(Checked(CurrentTab(sheet), IDC_PICTURE_SHOW));
    EXPECT_FALSE(Enabled(CurrentTab(sheet), IDC_PICTURE_SHOW));
    Press(sheet, IDCANCEL);
  });
  const uint32_t live = GlobalBlockLiveCount();
  EXPECT_FALSE(EditYearProperties(nullptr, &header_));
  EXPECT_TRUE(driver.Finished());
  EXPECT_EQ(said, StringTableText(IDS_IMAGE_LOAD_FAILED));
  EXPECT_EQ(std::memcmp(&header_, &before, sizeof header_), 0);
  EXPECT_EQ(BlockBytes(header_.CoverPicture), pixels);
  EXPECT_EQ(GlobalBlockLiveCount(), live);
}
