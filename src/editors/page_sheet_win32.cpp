#include "editors/page_sheet_win32.h"

#include <commctrl.h>

#include <cstring>
#include <string>

#include "base/program_win32.h"
#include "base/text.h"
#include "calendar/calendar_model.h"
#include "calendar/event_list.h"
#include "config/settings.h"
#include "editors/page_tabs.h"
#include "editors/property_page_win32.h"
#include "editors/sheet_tab_win32.h"
#include "res/string_ids.h"
#include "res/page_sheet_ids.h"

namespace {

MonthPage* Page(PageContext* c) { return static_cast<MonthPage*>(c->record); }

// The event lists of the program's folder (where the loader finds them), each by its name before the
// first dot; the page's own list selected when it is there.
void FillEventLists(HWND tab, const MonthPage& page) {
  WIN32_FIND_DATAA found;
  const std::string pattern = JoinPath(Settings.ApplicationPath, "*.CDF");
  HANDLE search = FindFirstFileA(pattern.c_str(), &found);
  if (search != INVALID_HANDLE_VALUE) {
    do {
      if (found.cFileName[0] == '.') continue;
      std::string name = found.cFileName;
      name = name.substr(0, name.find('.'));
      SendDlgItemMessageA(tab, IDC_DAYS_LIST, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name.c_str()));
    } while (FindNextFileA(search, &found));
    FindClose(search);
  }
  const LRESULT match =
      SendDlgItemMessageA(tab, IDC_DAYS_LIST, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1),
                          reinterpret_cast<LPARAM>(page.DaysName));
  SendDlgItemMessageA(tab, IDC_DAYS_LIST, CB_SETCURSEL, match == CB_ERR ? static_cast<WPARAM>(-1) : match, 0);
}

// The list chosen becomes the page's, loaded afresh (none when it cannot be).
void ReadEventList(HWND tab, MonthPage* page) {
  char name[261] = "";  // 260 characters at most
  GetDlgItemTextA(tab, IDC_DAYS_LIST, name, sizeof name);
  CopyText(page->DaysName, sizeof page->DaysName, name);
  if (page->Events) GlobalBlockFree(page->Events);
  page->Events = LoadEventList(page->DaysName);
}

// What the page tabs do beyond the shared behaviour of every tab: the
// Events tab's list of event lists.
bool PageTabQuirks(HWND tab, UINT message, WPARAM wParam, LPARAM lParam, PageContext* c) {
  if (c->index == kEventsTab && message == WM_INITDIALOG) FillEventLists(tab, *Page(c));
  if (c->index == kEventsTab && message == WM_DESTROY) ReadEventList(tab, Page(c));
  return SheetTabMessage(tab, message, wParam, lParam, c);
}

}  // namespace

bool EditPageProperties(HWND owner, MonthPage* page) {
  MonthPage copy;
  if (!CopyMonthPage(&copy, page)) {
    ShowMessage(owner, IDS_MEMORY_FAILED);
    return false;
  }
  copy.Edited = 0;
  RunSheet({owner, "Page", kPageTabs, kPageTabCount, "Month", PageTabQuirks, nullptr}, &copy, &copy.LastPropertyPage,
           &copy.Edited);
  if (!copy.Edited) {
    FreeMonthPage(&copy);
    return false;
  }
  // The copy-back is not checked and the working copy's blocks are not
  // freed: both kept on purpose.
  FreeMonthPage(page);
  CopyMonthPage(page, &copy);
  return true;
}
