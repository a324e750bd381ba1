// A property sheet of two bound tabs, driven as a user drives it: the tab
// shown is remembered, OK marks the copy edited, shown tabs read back.
#include <windows.h>
#include <commctrl.h>
#include <prsht.h>

#include <cstring>

#include "dialog_driver.h"
#include "editors/property_page_win32.h"
#include "test_support.h"

namespace {

#pragma pack(push, 1)
struct Record {
  uint16_t padding;
  uint16_t shadow;
  char caption[16];
  int32_t lastPage, edited;
};
#pragma pack(pop)

const ControlBinding kOne[] = {{135, ControlKind::Number, QUERNAL_FIELD(Record, padding)},
                               {130, ControlKind::Check, QUERNAL_FIELD(Record, shadow)}};
const ControlBinding kTwo[] = {{160, ControlKind::Text, QUERNAL_FIELD(Record, caption), nullptr, 0, {0, 0}, 12}};
const TabBinding kTabs[2] = {{kOne, 2, "ONE", nullptr}, {kTwo, 1, "TWO", nullptr}};

// The sheet over `record`, opening on tab `start`; what PropertySheet says.
INT_PTR RunSheet(Record* record, int start) {
  INITCOMMONCONTROLSEX controls{sizeof controls, ICC_UPDOWN_CLASS | ICC_TAB_CLASSES};
  InitCommonControlsEx(&controls);
  PageContext contexts[2];
  PROPSHEETPAGEA pages[2]{};
  const char* templates[2] = {"TestPageOne", "TestPageTwo"};
  for (int i = 0; i < 2; ++i) {
    contexts[i] = {&kTabs[i], record, i, &record->lastPage, &record->edited};
    pages[i].dwSize = sizeof pages[i];
    pages[i].hInstance = GetModuleHandleA(nullptr);
    pages[i].pszTemplate = templates[i];
    pages[i].pfnDlgProc = BoundPageProc;
    pages[i].lParam = reinterpret_cast<LPARAM>(&contexts[i]);
  }
  PROPSHEETHEADERA sheet{};
  sheet.dwSize = sizeof sheet;
  sheet.dwFlags = PSH_PROPSHEETPAGE | PSH_NOAPPLYNOW;
  sheet.hInstance = GetModuleHandleA(nullptr);
  sheet.pszCaption = "Test sheet";
  sheet.nPages = 2;
  sheet.nStartPage = static_cast<UINT>(start);
  sheet.ppsp = pages;
  return PropertySheetA(&sheet);
}

}  // namespace

TEST(PropertyPage, ShownTabsLoadAndReadBackAndOkMarksTheCopy) {
  Record record{7, 0, "Spring", 1, 0};
  DialogDriver driver;
  driver.Then("Test sheet", [](HWND sheet) {
    HWND two = PropSheet_GetCurrentPageHwnd(sheet);
    EXPECT_EQ(ItemText(two, 160), "Spring");
    SetDlgItemTextA(two, 160, "Summer evenings");  // longer than the tab keeps
    PropSheet_SetCurSel(sheet, nullptr, 0);
  });
  driver.Then("Test sheet", [](HWND sheet) {
    HWND one = PropSheet_GetCurrentPageHwnd(sheet);
    EXPECT_EQ(ItemText(one, 135), "7");
    EXPECT_EQ(SendDlgItemMessageA(one, 10135, UDM_GETRANGE, 0, 0), MAKELONG(50, 0));
    SetDlgItemTextA(one, 135, "99");  // beyond the arrows' range, kept as typed
    CheckDlgButton(one, 130, BST_CHECKED);
    // The tab and its statics wear the editors' face colour.
    HDC dc = GetDC(one);
    EXPECT_EQ(SendMessageA(one, WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(dc), 0),
              reinterpret_cast<LRESULT>(GetSysColorBrush(COLOR_BTNFACE)));
    ReleaseDC(one, dc);
    Press(sheet, IDOK);
  });
  EXPECT_GT(RunSheet(&record, 1), 0);
  EXPECT_TRUE(driver.Finished());
  EXPECT_EQ(record.padding, 99);
  EXPECT_EQ(record.shadow, 1);
  EXPECT_STREQ(record.caption, "Summer eveni");
  EXPECT_EQ(record.lastPage, 0) << "the tab shown last";
  EXPECT_EQ(record.edited, 1);

  // Cancel: the tab shown reads back into the copy, which the caller then
  // throws away; a tab never shown reads nothing; the copy is not edited.
  Record again{3, 0, "Winter", 0, 0};
  driver.Then("Test sheet", [](HWND sheet) {
    SetDlgItemTextA(PropSheet_GetCurrentPageHwnd(sheet), 135, "12");
    Press(sheet, IDCANCEL);
  });
  EXPECT_EQ(RunSheet(&again, 0), 0);
  EXPECT_EQ(again.padding, 12);
  EXPECT_STREQ(again.caption, "Winter");
  EXPECT_EQ(again.edited, 0);
}
