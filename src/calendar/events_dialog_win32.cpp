#include "calendar/events_dialog_win32.h"

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "res/calendar_dialog_ids.h"
#include "base/manual_win32.h"
#include "base/program_win32.h"
#include "calendar/calendar_dates.h"
#include "calendar/event_editing.h"

namespace {

// A line of an events file is read with at most 1,023 characters; the date
// and the separator take six of them.
constexpr int kMaxEventText = 1016;

HINSTANCE Resources() { return GetModuleHandleA(nullptr); }

std::string WindowText(HWND window) {
  std::string text(GetWindowTextLengthA(window) + 1, '\0');
  text.resize(GetWindowTextA(window, &text[0], static_cast<int>(text.size())));
  return text;
}

std::string DateText(const EventEntry& entry) { return std::string(MonthName(entry.month)) + " " + std::to_string(entry.day); }

// ---- The editors of one event (NEWEVENTBOX, EDITEVENTBOX) ----

struct EventEditor {
  EventEntry entry;
  int year;  // the calendar's year, for the length of February
};

void FillDays(HWND dialog, const EventEditor* editor, int day) {
  const HWND days = GetDlgItem(dialog, IDC_EVENT_DAY);
  const int month = static_cast<int>(SendDlgItemMessageA(dialog, IDC_EVENT_MONTH, CB_GETCURSEL, 0, 0));
  const int length = MonthLength(editor->year, month < 0 ? 0 : month);
  SendMessageA(days, CB_RESETCONTENT, 0, 0);
  for (int d = 1; d <= length; ++d) SendMessageA(days, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(std::to_string(d).c_str()));
  // A day past the end of a shorter month becomes its last day.
  const int chosen = day < 1 ? 1 : day > length ? length : day;
  SendMessageA(days, CB_SETCURSEL, chosen - 1, 0);
}

void StartEditor(HWND dialog, const EventEditor* editor) {
  if (const HWND months = GetDlgItem(dialog, IDC_EVENT_MONTH)) {
    for (int month = 0; month < 12; ++month) SendMessageA(months, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(MonthName(month)));
    SendMessageA(months, CB_SETCURSEL, editor->entry.month, 0);
    FillDays(dialog, editor, editor->entry.day);
  }
  SetDlgItemTextA(dialog, IDC_EVENT_DATE, DateText(editor->entry).c_str());
  SendDlgItemMessageA(dialog, IDC_EVENT_TEXT, EM_LIMITTEXT, kMaxEventText, 0);
  SetDlgItemTextA(dialog, IDC_EVENT_TEXT, editor->entry.text.c_str());
  SendDlgItemMessageA(dialog, IDC_EVENT_TEXT, EM_SETSEL, 0, -1);
  SetFocus(GetDlgItem(dialog, IDC_EVENT_TEXT));
}

void EnableOkWhenFilled(HWND dialog, int field) {
  EnableWindow(GetDlgItem(dialog, IDOK), GetWindowTextLengthA(GetDlgItem(dialog, field)) > 0);
}

void FinishEditor(HWND dialog, EventEditor* editor) {
  if (GetDlgItem(dialog, IDC_EVENT_MONTH)) {
    editor->entry.month = static_cast<int>(SendDlgItemMessageA(dialog, IDC_EVENT_MONTH, CB_GETCURSEL, 0, 0));
    editor->entry.day = static_cast<int>(SendDlgItemMessageA(dialog, IDC_EVENT_DAY, CB_GETCURSEL, 0, 0)) + 1;
  }
  editor->entry.text = WindowText(GetDlgItem(dialog, IDC_EVENT_TEXT));
  EndDialog(dialog, IDOK);
}

INT_PTR CALLBACK EventEditorProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  auto* editor = reinterpret_cast<EventEditor*>(GetWindowLongPtrA(dialog, DWLP_USER));
  switch (message) {
    case WM_INITDIALOG:
      SetWindowLongPtrA(dialog, DWLP_USER, lParam);
      StartEditor(dialog, reinterpret_cast<EventEditor*>(lParam));
      EnableOkWhenFilled(dialog, IDC_EVENT_TEXT);
      return FALSE;
    case WM_COMMAND:
      switch (LOWORD(wParam)) {
        case IDC_EVENT_MONTH:
          if (HIWORD(wParam) == CBN_SELCHANGE)
            FillDays(dialog, editor, static_cast<int>(SendDlgItemMessageA(dialog, IDC_EVENT_DAY, CB_GETCURSEL, 0, 0)) + 1);
          return TRUE;
        case IDC_EVENT_TEXT:
          if (HIWORD(wParam) == EN_CHANGE) EnableOkWhenFilled(dialog, IDC_EVENT_TEXT);
          return TRUE;
        case IDOK: FinishEditor(dialog, editor); return TRUE;
        case IDCANCEL: EndDialog(dialog, IDCANCEL); return TRUE;
      }
      return FALSE;
    default: return FALSE;
  }
}

bool RunEventEditor(HWND owner, const char* templateName, int year, EventEntry* entry) {
  EventEditor editor{*entry, year};
  if (DialogBoxParamA(Resources(), templateName, owner, EventEditorProc, reinterpret_cast<LPARAM>(&editor)) != IDOK)
    return false;
  *entry = editor.entry;
  return true;
}

// ---- The list name editor (NEWEVENTNAMEBOX) ----

// The name becomes a file name in the program's folder.
bool IsListName(const std::string& name) { return IsPlainListName(name.c_str()); }

INT_PTR CALLBACK ListNameProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  auto* name = reinterpret_cast<std::string*>(GetWindowLongPtrA(dialog, DWLP_USER));
  const HWND field = GetDlgItem(dialog, IDC_EVENT_LIST_NAME);
  switch (message) {
    case WM_INITDIALOG:
      SetWindowLongPtrA(dialog, DWLP_USER, lParam);
      // The name is kept in the month record's DaysName with its NUL.
      SendMessageA(field, EM_LIMITTEXT, sizeof(MonthPage::DaysName) - 1, 0);
      SetWindowTextA(field, reinterpret_cast<std::string*>(lParam)->c_str());
      SendMessageA(field, EM_SETSEL, 0, -1);
      SetFocus(field);
      return FALSE;
    case WM_COMMAND:
      switch (LOWORD(wParam)) {
        case IDC_EVENT_LIST_NAME:
          if (HIWORD(wParam) == EN_CHANGE) EnableWindow(GetDlgItem(dialog, IDOK), IsListName(WindowText(field)));
          return TRUE;
        case IDOK:
          *name = WindowText(field);
          EndDialog(dialog, IDOK);
          return TRUE;
        case IDCANCEL: EndDialog(dialog, IDCANCEL); return TRUE;
      }
      return FALSE;
    default: return FALSE;
  }
}

// ---- The list of events (EVENTSBOX) ----

struct EventsState {
  CalendarDocument document;
  int month;  // the page whose list is edited
  int year;
  std::string name;
  bool saved;
};

HWND List(HWND dialog) { return GetDlgItem(dialog, IDC_EVENT_LIST); }

std::string ItemCode(HWND list, int index) {
  const LRESULT length = SendMessageA(list, LB_GETTEXTLEN, index, 0);
  if (length == LB_ERR) return std::string();
  std::string code(static_cast<size_t>(length) + 1, '\0');
  code.resize(static_cast<size_t>(SendMessageA(list, LB_GETTEXT, index, reinterpret_cast<LPARAM>(&code[0]))));
  return code;
}

// LB_FINDSTRINGEXACT ignores case, but "Party" and "party" are two events.
int FindCode(HWND list, const std::string& code) {
  const int count = static_cast<int>(SendMessageA(list, LB_GETCOUNT, 0, 0));
  for (int index = 0; index < count; ++index)
    if (ItemCode(list, index) == code) return index;
  return -1;
}

// Adds the entry unless it is listed already; its index, or -1 when the list
// box ran out of memory.
int AddEntry(HWND list, const EventEntry& entry) {
  const std::string code = EventListCode(entry);
  const int found = FindCode(list, code);
  if (found >= 0) return found;
  const LRESULT index = SendMessageA(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(code.c_str()));
  return index < 0 ? -1 : static_cast<int>(index);
}

bool SelectedEntry(HWND list, EventEntry* entry) {
  const LRESULT index = SendMessageA(list, LB_GETCURSEL, 0, 0);
  return index != LB_ERR && EventFromListCode(ItemCode(list, static_cast<int>(index)), entry);
}

void Select(HWND dialog, int index) {
  SendMessageA(List(dialog), LB_SETCURSEL, index, 0);
  EnableWindow(GetDlgItem(dialog, IDOK), SendMessageA(List(dialog), LB_GETCOUNT, 0, 0) > 0);
}

void RenewTitle(HWND dialog, const EventsState* state) {
  char title[512];
  std::snprintf(title, sizeof title, StringTableText(IDS_EVENTS_TITLE).c_str(), state->name.c_str());
  SetWindowTextA(dialog, title);
}

// Rows as tall as the dialog font's line, with a little air.
void SetRowHeight(HWND dialog) {
  HDC dc = GetDC(dialog);
  const HGDIOBJ old = SelectObject(dc, reinterpret_cast<HGDIOBJ>(SendMessageA(dialog, WM_GETFONT, 0, 0)));
  TEXTMETRICA metrics;
  GetTextMetricsA(dc, &metrics);
  SelectObject(dc, old);
  ReleaseDC(dialog, dc);
  SendMessageA(List(dialog), LB_SETITEMHEIGHT, 0, metrics.tmHeight + 2);
}

// Failure of any step: the message has been shown and the dialog closes.
bool StartEvents(HWND dialog, EventsState* state) {
  CalendarHeader header;
  MonthPage page;
  if (!GetHeader(state->document, &header) || !GetMonthPage(state->document, header.CurrentPage, &page)) {
    ShowMessage(dialog, IDS_PAGE_ACCESS_FAILED);
    return false;
  }
  if (!page.Events) {
    ShowMessage(dialog, IDS_NO_EVENTS);
    return false;
  }
  state->month = header.CurrentPage;
  state->year = CalendarYear(&header);
  state->name.assign(page.DaysName, strnlen(page.DaysName, sizeof page.DaysName));
  SetRowHeight(dialog);
  for (const std::string& code : EventListCodes(page.Events)) {
    EventEntry entry;
    if (EventFromListCode(code, &entry) && AddEntry(List(dialog), entry) < 0) {
      ShowMessage(dialog, IDS_MEMORY_FAILED);
      return false;
    }
  }
  Select(dialog, 0);
  RenewTitle(dialog, state);
  return true;
}

void DeleteEntry(HWND dialog) {
  const int index = static_cast<int>(SendMessageA(List(dialog), LB_GETCURSEL, 0, 0));
  if (index < 0 || ShowMessage(dialog, IDS_DELETE_EVENT, MB_YESNO | MB_ICONQUESTION) != IDYES) return;
  const int left = static_cast<int>(SendMessageA(List(dialog), LB_DELETESTRING, index, 0));
  Select(dialog, index < left ? index : left - 1);
}

void NewEntry(HWND dialog, const EventsState* state) {
  EventEntry entry{state->month, 1, ""};
  if (SelectedEntry(List(dialog), &entry)) entry.text.clear();  // a new event starts on the selected date
  if (!RunEventEditor(dialog, "NEWEVENTBOX", state->year, &entry)) return;
  const int index = AddEntry(List(dialog), entry);
  if (index < 0) return (void)ShowMessage(dialog, IDS_MEMORY_FAILED);
  Select(dialog, index);
}

void EditEntry(HWND dialog, const EventsState* state) {
  const int index = static_cast<int>(SendMessageA(List(dialog), LB_GETCURSEL, 0, 0));
  EventEntry entry;
  if (!SelectedEntry(List(dialog), &entry) || !RunEventEditor(dialog, "EDITEVENTBOX", state->year, &entry)) return;
  SendMessageA(List(dialog), LB_DELETESTRING, index, 0);
  const int added = AddEntry(List(dialog), entry);
  if (added < 0) return (void)ShowMessage(dialog, IDS_MEMORY_FAILED);
  Select(dialog, added);
}

void RenameList(HWND dialog, EventsState* state) {
  std::string name = state->name;
  if (DialogBoxParamA(Resources(), "NEWEVENTNAMEBOX", dialog, ListNameProc, reinterpret_cast<LPARAM>(&name)) != IDOK) return;
  MonthPage page;
  if (!GetMonthPage(state->document, state->month, &page)) return (void)ShowMessage(dialog, IDS_PAGE_ACCESS_FAILED);
  std::memset(page.DaysName, 0, sizeof page.DaysName);
  name.copy(page.DaysName, sizeof page.DaysName - 1);
  // The record is back in the calendar under its new list name: the
  // calendar has changed, as after any edit.
  CalendarHeader header;
  if (!PutMonthPage(state->document, state->month, &page) || !GetHeader(state->document, &header))
    return (void)ShowMessage(dialog, IDS_PAGE_ACCESS_FAILED);
  header.Changed = 1;
  if (!PutHeader(state->document, &header)) ShowMessage(dialog, IDS_PAGE_ACCESS_FAILED);
  state->name = page.DaysName;
  RenewTitle(dialog, state);
}

void SaveList(HWND dialog, EventsState* state) {
  std::vector<std::string> codes;
  const int count = static_cast<int>(SendMessageA(List(dialog), LB_GETCOUNT, 0, 0));
  for (int index = 0; index < count; ++index) codes.push_back(ItemCode(List(dialog), index));
  if (!SaveEventList(state->document, state->name.c_str(), codes)) return (void)ShowMessage(dialog, IDS_WRITE_FAILED);
  state->saved = true;
  EndDialog(dialog, IDOK);
}

// The codes are drawn as people read them: the date in a column, then the text.
void DrawEntry(const DRAWITEMSTRUCT* item) {
  if (item->itemID == static_cast<UINT>(-1)) return;
  const bool selected = (item->itemState & ODS_SELECTED) != 0;
  FillRect(item->hDC, &item->rcItem, GetSysColorBrush(selected ? COLOR_HIGHLIGHT : COLOR_WINDOW));
  EventEntry entry;
  if (EventFromListCode(ItemCode(item->hwndItem, static_cast<int>(item->itemID)), &entry)) {
    SetBkMode(item->hDC, TRANSPARENT);
    SetTextColor(item->hDC, GetSysColor(selected ? COLOR_HIGHLIGHTTEXT : COLOR_WINDOWTEXT));
    SIZE column;
    GetTextExtentPoint32A(item->hDC, "September 30  ", 14, &column);
    RECT date = item->rcItem, text = item->rcItem;
    date.left += 3;
    text.left = date.left + column.cx;
    const std::string day = DateText(entry);
    const UINT flags = DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS;
    DrawTextA(item->hDC, day.c_str(), -1, &date, flags);
    DrawTextA(item->hDC, entry.text.c_str(), -1, &text, flags);
  }
  if (item->itemState & ODS_FOCUS) DrawFocusRect(item->hDC, &item->rcItem);
}

INT_PTR CALLBACK EventsProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  auto* state = reinterpret_cast<EventsState*>(GetWindowLongPtrA(dialog, DWLP_USER));
  switch (message) {
    case WM_INITDIALOG:
      SetWindowLongPtrA(dialog, DWLP_USER, lParam);
      if (!StartEvents(dialog, reinterpret_cast<EventsState*>(lParam))) EndDialog(dialog, IDCANCEL);
      return TRUE;
    case WM_DRAWITEM:
      if (wParam != IDC_EVENT_LIST) return FALSE;
      DrawEntry(reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
      return TRUE;
    case WM_COMMAND:
      switch (LOWORD(wParam)) {
        case IDC_EVENT_LIST:
          if (HIWORD(wParam) == LBN_DBLCLK) EditEntry(dialog, state);
          return TRUE;
        case IDC_EVENT_NEW: NewEntry(dialog, state); return TRUE;
        case IDC_EVENT_DELETE: DeleteEntry(dialog); return TRUE;
        case IDC_EVENT_NEW_NAME: RenameList(dialog, state); return TRUE;
        case IDOK: SaveList(dialog, state); return TRUE;
        case IDHELP: OpenManual(dialog, "EVENTS"); return TRUE;
        case IDCANCEL: EndDialog(dialog, IDCANCEL); return TRUE;
      }
      return FALSE;
    default: return FALSE;
  }
}

}  // namespace

bool EditEvents(HWND owner, CalendarDocument document) {
  EventsState state{document, 0, 0, std::string(), false};
  DialogBoxParamA(Resources(), "EVENTSBOX", owner, EventsProc, reinterpret_cast<LPARAM>(&state));
  return state.saved;
}
