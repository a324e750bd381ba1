// The options sheet driven as a user drives it: options and names reach the
// settings only through OK and only from the tabs shown; the theme chooser
// lists the themes beside the program.
#include <windows.h>
#include <commctrl.h>
#include <prsht.h>

#include <string>
#include <vector>

#include "config/settings.h"
#include "dialog_driver.h"
#include "editors/setup_sheet_win32.h"
#include "res/setup_sheet_ids.h"
#include "test_support.h"

TEST_F(QuernalTest, SetupWritesTheOptionsAndNamesOnlyOnOk) {
  std::vector<std::string> themes;
  DialogDriver driver;
  driver.Then("Setup", [](HWND sheet) {
    HWND application = PropSheet_GetCurrentPageHwnd(sheet);
    EXPECT_EQ(SendDlgItemMessageA(application, 10000 + IDC_SETUP_COMPRESSION, UDM_GETRANGE, 0, 0), MAKELONG(9, 1));
    EXPECT_EQ(IsDlgButtonChecked(application, IDC_SETUP_WARN_PALETTE), BST_UNCHECKED) << "never loaded";
    SetCheck(application, IDC_SETUP_START_MONDAY, true);
    SetDlgItemTextA(application, IDC_SETUP_COMPRESSION, "12");
    Press(application, IDC_SETUP_THEME);
  });
  driver.Then("Choose Theme", [&](HWND box) {
    themes = Entries(box, IDC_THEME_LIST);
    SendDlgItemMessageA(box, IDC_THEME_LIST, LB_SETCURSEL, themes.size() - 1, 0);
    Press(box, IDOK);
  });
  driver.Then("Setup", [](HWND sheet) {
    PropSheet_SetCurSel(sheet, nullptr, 1);
    HWND titles = PropSheet_GetCurrentPageHwnd(sheet);
    EXPECT_EQ(ItemText(titles, IDC_SETUP_FIRST_MONTH), "January");
    SetDlgItemTextA(titles, IDC_SETUP_FIRST_MONTH, "Janvier");
    SetDlgItemTextA(titles, IDC_SETUP_FIRST_DAY + 1, "Lundi");
    Press(sheet, IDOK);
  });
  ASSERT_TRUE(EditSetup(nullptr));
  EXPECT_TRUE(driver.Finished());
  EXPECT_EQ(Settings.StartMonday, 1u);
  EXPECT_EQ(Settings.ImageCompression, 9u) << "clamped to the arrows' range";
  EXPECT_STREQ(Settings.MonthJanuary, "Janvier");
  EXPECT_STREQ(Settings.DayMonday, "Lundi");
  ASSERT_FALSE(themes.empty());
  EXPECT_EQ(themes[0].rfind("THEME_", 0), 0u);
  EXPECT_EQ(Settings.ThemeCurrent, themes.back()) << "the theme chosen, for the next start";

  // Cancel changes nothing, whatever the tabs showed.
  driver.Then("Setup", [](HWND sheet) {
    SetCheck(PropSheet_GetCurrentPageHwnd(sheet), IDC_SETUP_USE_AD, true);
    Press(sheet, IDCANCEL);
  });
  EXPECT_FALSE(EditSetup(nullptr));
  EXPECT_EQ(Settings.UseAD, 0u);
}
