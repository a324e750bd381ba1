#include "editors/year_sheet_win32.h"

#include <commctrl.h>

#include <cstdio>

#include "base/program_win32.h"
#include "calendar/calendar_dates.h"
#include "calendar/calendar_model.h"
#include "config/settings.h"
#include "editors/dialog_controls_win32.h"
#include "editors/sheet_tab_win32.h"
#include "editors/year_tabs.h"
#include "res/string_ids.h"
#include "res/year_sheet_ids.h"

namespace {

CalendarHeader* Header(PageContext* c) { return static_cast<CalendarHeader*>(c->record); }

// The year's arrows run from 1583 to 2583 and start at this year, whatever
// the template says; the edit then shows the header's year.
void SetUpYear(HWND tab, const CalendarHeader& header) {
  char range[48];
  std::snprintf(range, sizeof range, "%d,%d,%d", 1583, 2583, Today().year);
  SetDlgItemTextA(tab, kUpDownOffset + IDC_YEAR_NUMBER, range);
  Win32DialogControls controls(tab);
  SetUpUpDown(controls, kUpDownOffset + IDC_YEAR_NUMBER);
  controls.SetNumber(IDC_YEAR_NUMBER, static_cast<uint32_t>(header.Year));
  SetDlgItemTextA(tab, IDC_YEAR_ERA, Settings.UseAD ? "A.D." : "C.E.");
}

// "Use current year" greys the year, its arrows and its era.
void YearRefresh(HWND tab, PageContext* c) {
  if (c->index != kYearTab) return;
  const BOOL own = IsDlgButtonChecked(tab, IDC_YEAR_CURRENT) != BST_CHECKED;
  for (int id : {IDC_YEAR_NUMBER, kUpDownOffset + IDC_YEAR_NUMBER, IDC_YEAR_ERA}) EnableWindow(GetDlgItem(tab, id), own);
}

bool YearTabQuirks(HWND tab, UINT message, WPARAM wParam, LPARAM lParam, PageContext* c) {
  if (c->index == kYearTab && message == WM_INITDIALOG) SetUpYear(tab, *Header(c));
  // A click on "Use current year" resets the tab as the font box does.
  if (c->index == kYearTab && message == WM_COMMAND && LOWORD(wParam) == IDC_YEAR_CURRENT &&
      HIWORD(wParam) == BN_CLICKED)
    return ResetSheetTab(tab, c), true;
  return SheetTabMessage(tab, message, wParam, lParam, c);
}

}  // namespace

bool EditYearProperties(HWND owner, CalendarHeader* header) {
  CalendarHeader copy;
  if (!CopyHeader(&copy, header)) {
    ShowMessage(owner, IDS_MEMORY_FAILED);
    return false;
  }
  copy.YearEdited = 0;
  RunSheet({owner, "Year", kYearTabs, kYearTabCount, "Year", YearTabQuirks, YearRefresh}, &copy,
           &copy.LastYearPropertyPage, &copy.YearEdited);
  if (!copy.YearEdited) {
    FreeHeader(&copy);
    return false;
  }
  // As the page sheet does: the copy-back is not checked and the working
  // copy's cover picture is not freed, both kept on purpose.
  FreeHeader(header);
  CopyHeader(header, &copy);
  return true;
}
