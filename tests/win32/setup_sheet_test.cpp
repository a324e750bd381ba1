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

namespace {
// "Choose Theme" answered with OK on its entry `index` (counted from the end
// when negative); the entries it listed in `themes`.
void ChooseThemeAt(DialogDriver* driver, int index, std::vector<std::string>* themes) {
  driver->Then("Choose Theme", [=](HWND box) {
    *themes = Entries(box, IDC_THEME_LIST);
    const int count = static_cast<int>(themes->size());
    SendDlgItemMessageA(box, IDC_THEME_LIST, LB_SETCURSEL, index < 0 ? count + index : index, 0);
    Press(box, IDOK);
  });
}
}  // namespace

TEST_F(QuernalTest, SetupWritesTheOptionsNamesAndThemeOnlyOnOk) {
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
  ChooseThemeAt(&driver, 0, &themes);
  driver.Then("Setup", [](HWND sheet) {
    EXPECT_STREQ(Settings.ThemeCurrent, "THEME_Standard.dll") << "kept for OK";
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
  ASSERT_GE(themes.size(), 2u) << "the standard theme and the test's own beside the program";
  EXPECT_EQ(themes[0].rfind("THEME_", 0), 0u);
  EXPECT_NE(themes[0], "THEME_Standard.dll");
  EXPECT_EQ(Settings.ThemeCurrent, themes[0]) << "the theme chosen, for the next start";

  // Cancel changes nothing, whatever the tabs showed and the theme chosen.
  driver.Then("Setup", [](HWND sheet) {
    SetCheck(PropSheet_GetCurrentPageHwnd(sheet), IDC_SETUP_USE_AD, true);
    Press(PropSheet_GetCurrentPageHwnd(sheet), IDC_SETUP_THEME);
  });
  ChooseThemeAt(&driver, -1, &themes);
  driver.Then("Setup", [](HWND sheet) { Press(sheet, IDCANCEL); });
  EXPECT_FALSE(EditSetup(nullptr));
  EXPECT_TRUE(driver.Finished());
  EXPECT_EQ(Settings.UseAD, 0u);
  EXPECT_EQ(Settings.ThemeCurrent, themes[0]);
}
