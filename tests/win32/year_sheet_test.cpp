// The year's property sheet driven as a user drives it: the year with its
// arrows and "Use current year".
#include <windows.h>
#include <commctrl.h>
#include <prsht.h>

#include <string>

#include "calendar/calendar_model.h"
#include "dialog_driver.h"
#include "editors/year_sheet_win32.h"
#include "res/year_sheet_ids.h"
#include "test_support.h"

// The year's arrows run from 1583 to 2583 whatever the template says; a
// year typed beyond them and greyed by "Use current year" is still read
// back on OK. (The cover's picture is driven with the page's.)
TEST_F(QuernalTest, TheYearSheetGivesTheHeaderTheYearAsTyped) {
  CalendarDocument document = CreateCalendar(2027, 0);
  CalendarHeader header;
  ASSERT_TRUE(GetHeader(document, &header));
  header.LastYearPropertyPage = 0;
  header.UseCurrentYear = 0;
  DialogDriver driver;
  driver.Then("Year", [](HWND sheet) {
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
    Press(sheet, IDOK);
  });
  ASSERT_TRUE(EditYearProperties(nullptr, &header));
  EXPECT_TRUE(driver.Finished());
  EXPECT_EQ(header.Year, 99999);
  EXPECT_EQ(header.UseCurrentYear, 1);
  EXPECT_EQ(header.LastYearPropertyPage, 0);
  EXPECT_EQ(header.YearEdited, 1);
  PutHeader(document, &header);
  FreeCalendar(document);
}
