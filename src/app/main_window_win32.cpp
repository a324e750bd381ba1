#include "app/main_window_win32.h"

#include <shellapi.h>

#include <string>

#include "app/about_box_win32.h"
#include "app/app_state_win32.h"
#include "app/calendar_files_win32.h"
#include "app/clipboard_viewer_win32.h"
#include "app/page_view_win32.h"
#include "app/picture_clipboard_win32.h"
#include "app/picture_commands_win32.h"
#include "app/recent_files_win32.h"
#include "app/system_info_win32.h"
#include "app/theme_win32.h"
#include "app/toolbar_win32.h"
#include "app/window_layout.h"
#include "base/manual_win32.h"
#include "base/program_win32.h"
#include "calendar/calendar_dates.h"
#include "calendar/events_dialog_win32.h"
#include "calendar/replicate_dialog_win32.h"
#include "config/settings.h"
#include "config/settings_file.h"
#include "editors/page_sheet_win32.h"
#include "editors/setup_sheet_win32.h"
#include "editors/year_sheet_win32.h"
#include "print/print_job_win32.h"
#include "print/printer_win32.h"
#include "res/main_ids.h"
#include "res/string_ids.h"

AppState App;

namespace {

// The View menu names the months as the pages do (the names Setup gives
// them), each with its first letter as access key, and marks the page shown.
void UpdateViewMenu(HMENU menu, int shown) {
  for (int month = 0; month < 12; ++month) {
    std::string text = "&";
    for (const char* c = MonthName(month); *c; ++c) text += *c == '&' ? std::string("&&") : std::string(1, *c);
    ModifyMenuA(menu, IDM_PAGE_JANUARY + month, MF_BYCOMMAND | MF_STRING, IDM_PAGE_JANUARY + month, text.c_str());
  }
  for (int id = IDM_PAGE_JANUARY; id <= IDM_PAGE_COVER; ++id)
    CheckMenuItem(menu, id, MF_BYCOMMAND | (id - IDM_PAGE_JANUARY == shown ? MF_CHECKED : MF_UNCHECKED));
}

// Edit month: the page sheet over the month page shown. What OK gives back
// goes into the document and becomes the design of later new pages.
void EditMonth(HWND window) {
  const int shown = CurrentPage();
  MonthPage page;
  CalendarHeader header;
  if (shown >= 12) return;
  if (!GetMonthPage(App.document, shown, &page)) return (void)ShowMessage(window, IDS_PAGE_ACCESS_FAILED);
  if (!EditPageProperties(window, &page)) return;
  if (!PutMonthPage(App.document, shown, &page) || !GetHeader(App.document, &header)) {
    ShowMessage(window, IDS_PAGE_ACCESS_FAILED);
  } else {
    header.Changed = 1;
    PutHeader(App.document, &header);
  }
  StoreMonthPageAsDefaults(&page);
  UpdatePageCommands(window);
  InvalidateRect(window, nullptr, TRUE);
}

// Edit year: the year sheet over the calendar's header. What OK gives back
// goes into the document and becomes the design of later new calendars.
void EditYear(HWND window) {
  CalendarHeader header;
  if (!GetHeader(App.document, &header)) return (void)ShowMessage(window, IDS_PAGE_ACCESS_FAILED);
  if (!EditYearProperties(window, &header)) return;
  header.Changed = 1;
  if (!PutHeader(App.document, &header)) ShowMessage(window, IDS_PAGE_ACCESS_FAILED);
  StoreHeaderAsDefaults(&header);
  InvalidateRect(window, nullptr, TRUE);
}

// Setup: new names and the first day of the week show on the open calendar
// and in the View menu at once, and a new theme on the toolbar.
void Setup(HWND window) {
  const std::string theme = Settings.ThemeCurrent;
  if (!EditSetup(window)) return;
  if (theme != Settings.ThemeCurrent) {
    LoadTheme(Settings.ThemeCurrent);
    RECT client;
    GetClientRect(window, &client);
    FitToolbar(window, client.right);
    LayOutChildren(window);
  }
  UpdatePageCommands(window);  // the View menu's month names
  RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

// A window dragged near an edge of the screen's work area lands on it.
void SnapToWorkArea(RECT* dragged) {
  MONITORINFO monitor{};
  monitor.cbSize = sizeof monitor;
  if (!GetMonitorInfoA(MonitorFromRect(dragged, MONITOR_DEFAULTTONEAREST), &monitor)) return;
  const RECT& w = monitor.rcWork;
  const Rect snapped = SnappedToEdges({dragged->left, dragged->top, dragged->right, dragged->bottom},
                                      {w.left, w.top, w.right, w.bottom}, ScaledForScreen(12));
  *dragged = {snapped.left, snapped.top, snapped.right, snapped.bottom};
}

// The title keeps the page it was named with: it changes with the
// document's name, not with the page shown.
void ShowPage(HWND window, int page) {
  CalendarHeader header;
  if (!GetHeader(App.document, &header)) return;
  header.CurrentPage = page;
  PutHeader(App.document, &header);
  UpdatePageCommands(window);
  InvalidateRect(window, nullptr, TRUE);
}

// The page takes the shape of the printer, which a print dialog may have
// changed.
void PrinterMayHaveChanged(HWND window) {
  UpdateScrollBars(window);
  InvalidateRect(window, nullptr, TRUE);
}

void Command(HWND window, int id) {
  const std::string recent = RecentFileForCommand(window, id);
  if (!recent.empty()) {
    QueueCalendarToOpen(recent);
    return (void)SendMessageA(window, WM_COMMAND, IDM_OPEN, 0);
  }
  if (id >= IDM_PAGE_JANUARY && id <= IDM_PAGE_COVER) return ShowPage(window, id - IDM_PAGE_JANUARY);
  if (id >= IDM_ZOOM_100 && id <= IDM_ZOOM_800) return SetZoom(window, id);
  switch (id) {
    case IDM_NEW: return NewCalendar(window);
    case IDM_OPEN: return OpenCalendar(window);
    case IDM_SAVE: return SaveCalendarCommand(window);
    case IDM_SAVE_AS: return SaveCalendarAs(window);
    case IDM_EXIT:
      CheckUnsavedChanges(window);
      SendMessageA(window, WM_CLOSE, 0, 0);
      return;
    case IDM_MANUAL:
    case IDM_HELP: OpenManual(window, "DOCUMENTATION"); return;
    case IDM_ABOUT: ShowAboutBox(window); return;
    case IDM_SYSTEM_INFORMATION: ShowSystemInformation(window); return;
    case IDM_EDIT_YEAR_BUTTON: return (void)PostMessageA(window, WM_COMMAND, IDM_EDIT_YEAR, 0);
    // "Edits current page": the year sheet edits the year page and the cover.
    case IDM_EDIT_PAGE_BUTTON:
      return (void)PostMessageA(window, WM_COMMAND, CurrentPage() < 12 ? IDM_EDIT_MONTH : IDM_EDIT_YEAR, 0);
    case IDM_EDIT_MONTH: return EditMonth(window);
    case IDM_EDIT_YEAR: return EditYear(window);
    case IDM_SETUP: return Setup(window);
    case IDM_REPLICATE:
      // Only a month page has a design to copy onto the other months.
      if (CurrentPage() < 12 && ReplicateMonth(window, App.document)) InvalidateRect(window, nullptr, TRUE);
      return;
    case IDM_EVENTS:
      if (EditEvents(window, App.document)) InvalidateRect(window, nullptr, TRUE);
      return;
    case IDM_CUT:
    case IDM_COPY:
    case IDM_PASTE: return ClipboardCommand(window, id);
    case IDM_SELECT_PRINTER: PrinterSetup(window); return PrinterMayHaveChanged(window);
    case IDM_PRINT_SINGLE: PrintSingleSided(window, App.document, App.path.c_str()); return PrinterMayHaveChanged(window);
    case IDM_PRINT_DOUBLE: PrintDoubleSided(window, App.document, App.path.c_str()); return PrinterMayHaveChanged(window);
    default: return;  // the editors, printing and the rest come with their own parts
  }
}

void KeyDown(HWND window, WPARAM key) {
  const bool control = GetKeyState(VK_CONTROL) < 0;
  if (control && key == 'N') return Command(window, IDM_NEW);
  // The menu says Ctrl+0; Ctrl+O, which users expect, opens as well.
  if (control && (key == 'O' || key == '0')) return Command(window, IDM_OPEN);
  if (control && key == 'S') return Command(window, IDM_SAVE);
  // Ctrl+Page Down and Ctrl+Page Up go through the pages in the View menu's
  // order: January to December, the year, the cover, and round again.
  if (control && (key == VK_NEXT || key == VK_PRIOR))
    return Command(window, IDM_PAGE_JANUARY + (CurrentPage() + (key == VK_NEXT ? 1 : 13)) % 14);
  ScrollKey(window, key);
}

void Close(HWND window) {
  RECT r;
  const bool maximized = IsZoomed(window);
  if (!maximized && GetWindowRect(window, &r)) {
    StoredEdges e = EdgesToStore({r.left, r.top, r.right, r.bottom}, GetSystemMetrics(SM_CXSCREEN),
                                 GetSystemMetrics(SM_CYSCREEN));
    Settings.StickyWindowLeft = e.left, Settings.StickyWindowTop = e.top;
    Settings.StickyWindowRight = e.right, Settings.StickyWindowBottom = e.bottom;
  }
  Settings.StartMaximized = maximized ? 1 : 0;
  SaveSettings(RecentFiles(window));
}

}  // namespace

// The commands that need a month page are greyed while the year or the
// cover is shown; Cut and Copy need a picture on it, Paste one on the
// clipboard.
void UpdatePageCommands(HWND window) {
  const int page = CurrentPage();
  HMENU menu = GetMenu(window);
  UpdateViewMenu(menu, page);
  for (int id : {IDM_EDIT_MONTH, IDM_REPLICATE, IDM_EVENTS})
    EnableMenuItem(menu, id, MF_BYCOMMAND | (CommandActsOnPage(id, page) ? MF_ENABLED : MF_GRAYED));
  const bool month = page < 12, picture = PagePicture() != 0;
  const struct {
    int id;
    bool acts;
  } clipboard[] = {{IDM_CUT, month && picture}, {IDM_COPY, month && picture}, {IDM_PASTE, month && ClipboardHasPicture()}};
  for (const auto& c : clipboard) EnableMenuItem(menu, c.id, MF_BYCOMMAND | (c.acts ? MF_ENABLED : MF_GRAYED));
}


void UpdateTitle() {
  const std::string label = App.document ? DocumentLabel(App.path, PageName(CurrentPage())) : App.path;
  SetWindowTextA(App.mainWindow, WindowTitle(StringTableText(IDS_PRODUCT_NAME), label).c_str());
}

bool RegisterMainWindowClasses(HINSTANCE instance) {
  WNDCLASSA main{};
  main.style = CS_HREDRAW | CS_VREDRAW | CS_DBLCLKS;
  main.lpfnWndProc = MainWindowProc;
  main.hInstance = instance;
  main.hIcon = LoadIconA(instance, MAKEINTRESOURCEA(IDI_QUERNAL));
  main.hCursor = LoadCursorA(nullptr, MAKEINTRESOURCEA(32512));  // IDC_ARROW
  main.hbrBackground = App.faceBrush;
  main.lpszMenuName = "MainMenu";
  main.lpszClassName = kMainWindowClass;
  return RegisterClassA(&main) != 0 && RegisterToolbarClass(instance, App.barBrush);
}

// Asked before the manual opens while WarnShowManual is on; its check box,
// cleared, stops the asking.
bool AskBeforeManual(HWND owner) {
  if (!Settings.WarnShowManual) return true;
  INT_PTR pressed = IDCANCEL;
  if (!WarningWithCheckBox(owner, "ShowManualBox", MAKEINTRESOURCEA(32514), "", true, &pressed))  // IDI_QUESTION
    Settings.WarnShowManual = 0;
  return pressed == IDOK;
}

HWND CreateMainWindow() {
  SetManualQuestion(AskBeforeManual);
  App.mainWindow = CreateWindowA(kMainWindowClass, "Quernal", WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, CW_USEDEFAULT,
                                 App.defaultWidth, App.defaultHeight, nullptr, nullptr, App.instance, nullptr);
  if (!App.mainWindow) return nullptr;
  CreateToolbar(App.mainWindow, App.defaultWidth);
  CreateChildControls(App.mainWindow);
  return App.mainWindow;
}

void CreateChildControls(HWND window) {
  const struct {
    const char* cls;
    DWORD style;
    int id;
  } children[] = {{"SCROLLBAR", SBS_VERT, kVerticalScrollId},
                  {"SCROLLBAR", SBS_HORZ, kHorizontalScrollId},
                  {"BUTTON", BS_PUSHBUTTON, kScrollCornerId}};
  for (const auto& c : children)
    CreateWindowA(c.cls, "", WS_CHILD | WS_VISIBLE | c.style, 0, 0, 1, 1, window,
                  reinterpret_cast<HMENU>(static_cast<INT_PTR>(c.id)), App.instance, nullptr);
  LayOutChildren(window);
}

void RestoreWindowPosition(HWND window) {
  int32_t x, y;
  StoredEdges e{Settings.StickyWindowLeft, Settings.StickyWindowTop, Settings.StickyWindowRight,
                Settings.StickyWindowBottom};
  if (RestoredPosition(e, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN), &x, &y))
    SetWindowPos(window, nullptr, x, y, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
}

void OpenOnStart(HWND window, const char* path) {
  QueueCalendarToOpen(path);
  PostMessageA(window, WM_COMMAND, IDM_OPEN, 0);
}

LRESULT CALLBACK MainWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_CREATE: {
      App.mainWindow = window;
      LoadSettings();
      JoinClipboardChain(window);
      DragAcceptFiles(window, TRUE);
      // Centred on the screen.
      RECT r;
      GetWindowRect(window, &r);
      SetWindowPos(window, nullptr, (GetSystemMetrics(SM_CXSCREEN) - (r.right - r.left)) / 2,
                   (GetSystemMetrics(SM_CYSCREEN) - (r.bottom - r.top)) / 2, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
      PostMessageA(window, WM_COMMAND, IDM_ZOOM_100, 0);
      PostMessageA(window, WM_COMMAND, IDM_PAGE_JANUARY + CurrentPage(), 0);
      return 0;
    }
    case WM_SIZE: LayOutChildren(window); return 0;
    case WM_MOVING: SnapToWorkArea(reinterpret_cast<RECT*>(lParam)); return TRUE;
    case WM_PAINT: PaintPageView(window); return 0;
    case WM_COMMAND: Command(window, LOWORD(wParam)); return 0;
    case WM_VSCROLL: ScrollPageView(window, SB_VERT, LOWORD(wParam)); return 0;
    case WM_HSCROLL: ScrollPageView(window, SB_HORZ, LOWORD(wParam)); return 0;
    case WM_MOUSEWHEEL:
      ScrollPageView(window, SB_VERT, GET_WHEEL_DELTA_WPARAM(wParam) > 0 ? SB_LINEUP : SB_LINEDOWN);
      return 0;
    case WM_KEYDOWN: KeyDown(window, wParam); return 0;
    case WM_SYSCOMMAND:
      // While a modal dialog is up the window is disabled and stays open:
      // closing it under the dialog would pull the calendar away from it.
      if ((wParam & 0xFFF0) == SC_CLOSE) return IsWindowEnabled(window) ? Command(window, IDM_EXIT), 0 : 0;
      break;
    case WM_QUERYENDSESSION: CheckUnsavedChanges(window); return TRUE;
    case WM_CLOSE: Close(window); break;
    case WM_DRAWCLIPBOARD:
      UpdatePageCommands(window);
      PassClipboardNews(wParam, lParam);
      return 0;
    case WM_DROPFILES: FilesDropped(window, reinterpret_cast<HDROP>(wParam)); return 0;
    case WM_CHANGECBCHAIN: ClipboardChainChanged(wParam, lParam); return 0;
    case WM_DESTROY:
      App.pictures.Drop();
      LeaveClipboardChain(window);
      WinHelpA(window, "QUERNAL.HLP", HELP_QUIT, 0);
      PostQuitMessage(0);
      return 0;
  }
  return DefWindowProcA(window, message, wParam, lParam);
}
