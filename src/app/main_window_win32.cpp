#include "app/main_window_win32.h"

#include <commdlg.h>
#include <shellapi.h>
#include <shlobj.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "app/about_box_win32.h"
#include "app/app_state_win32.h"
#include "app/clipboard_viewer_win32.h"
#include "app/picture_clipboard_win32.h"
#include "app/recent_files_win32.h"
#include "app/system_info_win32.h"
#include "res/main_ids.h"
#include "app/theme_win32.h"
#include "app/toolbar_win32.h"
#include "app/window_layout.h"
#include "base/manual_win32.h"
#include "base/replace_file.h"
#include "base/text.h"
#include "calendar/calendar_dates.h"
#include "calendar/calendar_file.h"
#include "calendar/events_dialog_win32.h"
#include "calendar/replicate_dialog_win32.h"
#include "config/settings.h"
#include "config/settings_file.h"
#include "editors/page_sheet_win32.h"
#include "editors/setup_sheet_win32.h"
#include "editors/year_sheet_win32.h"
#include "pictures/page_picture_win32.h"
#include "print/print_job_win32.h"
#include "print/printer_win32.h"
#include "print/status_box_win32.h"
#include "render/gdi_canvas_win32.h"
#include "render/page_renderer.h"

AppState App;

namespace {

const int kZooms[4] = {100, 200, 400, 800};
std::string g_pendingPath;  // the next Open takes this instead of asking

// Loading and saving show the status box and the wait cursor, and ask about
// damaged records.
class WindowProgress : public FileProgress {
 public:
  explicit WindowProgress(HWND owner) : owner_(owner) {}
  void Begin(const char* caption) override {
    previous_ = SetCursor(LoadCursorA(nullptr, MAKEINTRESOURCEA(32514)));
    ShowPrintStatus(owner_, caption);
  }
  void Advance(int current, int total) override { UpdatePrintStatus(total, current); }
  void End() override {
    ClosePrintStatus();
    SetCursor(previous_);
  }
  bool AskYesNo(const char* question) override {
    return MessageBoxA(owner_, question, "Message", MB_YESNO | MB_ICONQUESTION) == IDYES;
  }

 private:
  HWND owner_;
  HCURSOR previous_ = nullptr;
};

int CurrentPage() {
  CalendarHeader header;
  if (!GetHeader(App.document, &header)) return 0;
  return header.CurrentPage >= 0 && header.CurrentPage <= 13 ? header.CurrentPage : 0;
}

// The page view's part of the client area: all of it below the toolbar strip,
// scroll bars included.
Rect ClientRect(HWND window) {
  RECT r;
  GetClientRect(window, &r);
  const int32_t top = r.top + ToolbarBottom(window);
  return {r.left, top < r.bottom ? top : r.bottom, r.right, r.bottom};
}

// The page at the current zoom, at 100 percent shaped like the printer's page
// and as high as 95 percent of the view between the strip and the
// horizontal scroll bar, so that the whole page shows at 100 percent.
Rect ZoomedPageRect(HWND window) {
  RECT page;
  PageRectForWindow(Height(ClientRect(window)) - GetSystemMetrics(SM_CYHSCROLL), &page);
  return ZoomedPage({page.left, page.top, page.right, page.bottom}, App.zoom);
}

// Where the page's top left corner sits in the client area: centred while
// it fits, else moved by the scroll bars.
POINT PageOrigin(HWND window, const Rect& page) {
  const Rect client = ClientRect(window);
  const int bar = GetSystemMetrics(SM_CXVSCROLL);
  const int spaceW = Width(client) - bar, spaceH = Height(client) - bar;
  POINT at;
  at.x = Width(page) < spaceW ? (spaceW - Width(page)) / 2 : 4 - App.scrollX;
  at.y = client.top + (Height(page) < spaceH ? (spaceH - Height(page)) / 2 : 4 - App.scrollY);
  return at;
}

void UpdateScrollBars(HWND window) {
  const Rect page = ZoomedPageRect(window), client = ClientRect(window);
  const int bar = GetSystemMetrics(SM_CXVSCROLL);
  const struct {
    int id, range, page;
    int* position;
  } bars[] = {{kHorizontalScrollId, Width(page) + 8, Width(client) - bar, &App.scrollX},
              {kVerticalScrollId, Height(page) + 8, Height(client) - bar, &App.scrollY}};
  for (const auto& b : bars) {
    SCROLLINFO info{sizeof info, SIF_ALL, 0, b.range, static_cast<UINT>(b.page > 0 ? b.page : 0), *b.position, 0};
    SetScrollInfo(GetDlgItem(window, b.id), SB_CTL, &info, TRUE);
    GetScrollInfo(GetDlgItem(window, b.id), SB_CTL, &info);
    *b.position = info.nPos;
  }
}

void LayOutChildren(HWND window) {
  RECT whole;
  GetClientRect(window, &whole);
  FitToolbar(window, whole.right - whole.left);
  const Rect client = ClientRect(window);
  const int bar = GetSystemMetrics(SM_CXVSCROLL);
  MoveWindow(GetDlgItem(window, kVerticalScrollId), client.right - bar, client.top, bar, Height(client) - bar, TRUE);
  MoveWindow(GetDlgItem(window, kHorizontalScrollId), 0, client.bottom - bar, client.right - bar, bar, TRUE);
  MoveWindow(GetDlgItem(window, kScrollCornerId), client.right - bar, client.bottom - bar, bar, bar, TRUE);
  UpdateScrollBars(window);
}

void Paint(HWND window) {
  PAINTSTRUCT ps;
  HDC dc = BeginPaint(window, &ps);
  const Rect page = ZoomedPageRect(window);
  const POINT at = PageOrigin(window, page);
  // A page scrolled up stays off the toolbar strip and the scroll bars. A
  // meta region, as the canvas sets and clears clip regions of its own.
  const Rect view = ClientRect(window);
  const int bar = GetSystemMetrics(SM_CXVSCROLL);
  IntersectClipRect(dc, view.left, view.top, view.right - bar, view.bottom - bar);
  SetMetaRgn(dc);
  POINT old;
  SetViewportOrgEx(dc, at.x, at.y, &old);
  {
    GdiCanvas canvas(dc, &App.pictures);
    DrawCalendarPage(canvas, {0, 0, Width(page), Height(page)}, App.document, CurrentPage(), false, true, true);
  }
  SetViewportOrgEx(dc, old.x, old.y, nullptr);
  EndPaint(window, &ps);
}

void SetZoom(HWND window, int command) {
  App.zoom = kZooms[command - IDM_ZOOM_100];
  HMENU menu = GetMenu(window);
  for (int id = IDM_ZOOM_100; id <= IDM_ZOOM_800; ++id)
    CheckMenuItem(menu, id, MF_BYCOMMAND | (id == command ? MF_CHECKED : MF_UNCHECKED));
  App.scrollX = App.scrollY = 0;
  UpdateScrollBars(window);
  InvalidateRect(window, nullptr, TRUE);
}

// The picture of the month page shown; 0 on the year and cover pages.
BlockHandle PagePicture() {
  MonthPage page;
  const int shown = CurrentPage();
  return shown < 12 && GetMonthPage(App.document, shown, &page) ? page.Picture : 0;
}

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

// The month page shown gets `picture` (or loses its own for 0): the old one
// is freed, a new one is shown, and the calendar has changed.
void SetPagePicture(HWND window, BlockHandle picture) {
  const int shown = CurrentPage();
  MonthPage page;
  CalendarHeader header;
  if (shown >= 12 || !GetMonthPage(App.document, shown, &page) || !GetHeader(App.document, &header)) {
    if (picture) GlobalBlockFree(picture);
    return (void)ShowMessage(window, IDS_PAGE_ACCESS_FAILED);
  }
  if (page.Picture) GlobalBlockFree(page.Picture);
  page.Picture = picture;
  if (picture) page.PictureShowPicture = 1;
  header.Changed = 1;
  if (!PutMonthPage(App.document, shown, &page) || !PutHeader(App.document, &header))
    ShowMessage(window, IDS_PAGE_ACCESS_FAILED);
  UpdatePageCommands(window);
  InvalidateRect(window, nullptr, TRUE);
}

void ClipboardCommand(HWND window, int id) {
  if (CurrentPage() >= 12) return;
  if (id == IDM_PASTE) {
    MonthPage page;
    BlockHandle picture =
        GetMonthPage(App.document, CurrentPage(), &page) ? PictureFromClipboard(window, page.PageBackgroundColour) : 0;
    return picture ? SetPagePicture(window, picture) : (void)ShowMessage(window, IDS_CLIPBOARD_FAILED);
  }
  const BlockHandle picture = PagePicture();
  if (!picture) return;
  if (!CopyPictureToClipboard(window, picture)) return (void)ShowMessage(window, IDS_CLIPBOARD_FAILED);
  if (id == IDM_CUT) SetPagePicture(window, 0);
}

// True for a calendar file: by its extension, or by the header's first bytes.
bool IsCalendarFile(const char* path) {
  const char* dot = std::strrchr(FileNamePart(path), '.');
  if (dot && lstrcmpiA(dot, ".CLN") == 0) return true;
  uint32_t magic = 0;
  std::FILE* f = std::fopen(path, "rb");
  const bool read = f && std::fread(&magic, sizeof magic, 1, f) == 1;
  if (f) std::fclose(f);
  return read && magic == kHeaderMagic;
}

// The cover gets `picture` as the cover tab's Select... gives it: shown.
void SetCoverPicture(HWND window, BlockHandle picture) {
  CalendarHeader header;
  if (!GetHeader(App.document, &header)) {
    GlobalBlockFree(picture);
    return (void)ShowMessage(window, IDS_PAGE_ACCESS_FAILED);
  }
  if (header.CoverPicture) GlobalBlockFree(header.CoverPicture);
  header.CoverPicture = picture;
  header.CoverPictureShowPicture = 1;
  header.Changed = 1;
  if (!PutHeader(App.document, &header)) ShowMessage(window, IDS_PAGE_ACCESS_FAILED);
  InvalidateRect(window, nullptr, TRUE);
}

// A calendar dropped on the window opens as File, Open opens it; a picture
// becomes the picture of the month page or the cover shown, as if chosen
// with "Select..."; the year page has none to take.
void FilesDropped(HWND window, HDROP drop) {
  char path[MAX_PATH] = "";
  const bool one = DragQueryFileA(drop, 0, path, sizeof path) > 0;
  DragFinish(drop);
  if (!one) return;
  if (IsCalendarFile(path)) {
    g_pendingPath = path;
    return (void)SendMessageA(window, WM_COMMAND, IDM_OPEN, 0);
  }
  const int shown = CurrentPage();
  if (shown == 12) return (void)ShowMessage(window, IDS_YEAR_HAS_NO_PICTURE);
  CalendarHeader header;
  MonthPage page;
  if (shown == 13) {
    if (!GetHeader(App.document, &header)) return;
    if (BlockHandle picture = LoadDroppedPicture(window, path, header.CoverBackgroundColour))
      SetCoverPicture(window, picture);
    return;
  }
  if (!GetMonthPage(App.document, shown, &page)) return;
  if (BlockHandle picture = LoadDroppedPicture(window, path, page.PageBackgroundColour)) SetPagePicture(window, picture);
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

// Message 111 when the calendar has changed; Yes saves it first.
void CheckUnsavedChanges(HWND window) {
  CalendarHeader header;
  if (!GetHeader(App.document, &header) || !header.Changed) return;
  if (ShowMessage(window, IDS_UNSAVED_CHANGES, MB_YESNO | MB_ICONQUESTION) == IDYES)
    SendMessageA(window, WM_COMMAND, IDM_SAVE, 0);
}

// Remembers how the calendar's file looks now that it was opened or saved.
void StampFile() { App.stamped = ReadFileStamp(App.path.c_str(), &App.stamp); }

void Adopt(HWND window, CalendarDocument document, const std::string& path) {
  App.pictures.Drop();
  FreeCalendar(App.document);
  App.document = document;
  App.path = path;
  StampFile();
  UpdateTitle();
  UpdatePageCommands(window);
  InvalidateRect(window, nullptr, TRUE);
}

void NewCalendar(HWND window) {
  CheckUnsavedChanges(window);
  CalendarDate today = Today();
  CalendarDocument document = CreateCalendar(today.year, today.month - 1);
  if (!document) {
    ShowMessage(window, IDS_INIT_YEAR_FAILED);
    return;
  }
  Adopt(window, document, "Untitled.CLN");
}

std::string DocumentsFolder() {
  char folder[MAX_PATH] = "";
  if (FAILED(SHGetFolderPathA(nullptr, CSIDL_PERSONAL, nullptr, SHGFP_TYPE_CURRENT, folder))) return "";
  return folder;
}

// The dialogs start where the last one ended, and remember where that was.
bool AskFileName(HWND window, bool save, std::string* path) {
  const std::string start = DialogStartFolder(Settings.OpenPath, Settings.ApplicationPath, DocumentsFolder());
  char file[MAX_PATH] = "";
  OPENFILENAMEA ofn{};
  ofn.lStructSize = sizeof ofn;
  ofn.hwndOwner = window;
  ofn.lpstrFilter = save ? "CLN files\0*.CLN\0" : "CLN files\0*.CLN\0All files\0*.*\0";
  ofn.lpstrFile = file;
  ofn.nMaxFile = sizeof file;
  ofn.lpstrInitialDir = start.c_str();
  ofn.lpstrDefExt = "CLN";
  ofn.Flags = OFN_HIDEREADONLY | OFN_NOCHANGEDIR |
              (save ? OFN_OVERWRITEPROMPT : OFN_PATHMUSTEXIST | OFN_FILEMUSTEXIST);
  if (!(save ? GetSaveFileNameA(&ofn) : GetOpenFileNameA(&ofn))) return false;
  *path = file;
  CopyText(Settings.OpenPath, sizeof Settings.OpenPath, FolderOfFile(file).c_str());
  return true;
}

void OpenCalendar(HWND window) {
  CheckUnsavedChanges(window);
  std::string path;
  if (!g_pendingPath.empty()) {
    path = g_pendingPath;
    g_pendingPath.clear();
  } else if (!AskFileName(window, false, &path)) {
    return;
  }
  WindowProgress progress(window);
  LoadFailure failure;
  CalendarDocument document = LoadCalendar(&progress, path.c_str(), &failure);
  if (!document) {
    ShowMessage(window, failure == LoadFailure::kOutOfMemory ? IDS_MEMORY_FAILED : IDS_READ_FAILED);
    return;
  }
  Adopt(window, document, path);
}

// True when `path` is the calendar's own file and another program changed
// it since it was opened or saved, and the user does not want it replaced.
bool KeepsChangedFile(HWND window, const std::string& path) {
  FileStamp now;
  if (!App.stamped || path != App.path || !ReadFileStamp(path.c_str(), &now) || now == App.stamp) return false;
  return ShowMessage(window, IDS_FILE_CHANGED_ON_DISK, MB_YESNO | MB_ICONQUESTION) != IDYES;
}

bool SaveTo(HWND window, const std::string& path) {
  if (!PicturesFitOneFile(App.document)) return ShowMessage(window, IDS_PICTURES_TOO_LARGE), false;
  if (KeepsChangedFile(window, path)) return false;
  WindowProgress progress(window);
  if (!SaveCalendar(&progress, path.c_str(), App.document)) {
    ShowMessage(window, LastWriteProblem() == WriteProblem::kFolderRefuses ? IDS_FOLDER_REFUSES : IDS_WRITE_FAILED);
    return false;
  }
  App.path = path;
  StampFile();
  UpdateTitle();
  CalendarHeader header;
  if (!GetHeader(App.document, &header)) return ShowMessage(window, IDS_PAGE_ACCESS_FAILED), true;
  header.Changed = 0;
  if (!PutHeader(App.document, &header)) ShowMessage(window, IDS_PAGE_ACCESS_FAILED);
  return true;
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
    g_pendingPath = recent;
    return (void)SendMessageA(window, WM_COMMAND, IDM_OPEN, 0);
  }
  if (id >= IDM_PAGE_JANUARY && id <= IDM_PAGE_COVER) return ShowPage(window, id - IDM_PAGE_JANUARY);
  if (id >= IDM_ZOOM_100 && id <= IDM_ZOOM_800) return SetZoom(window, id);
  switch (id) {
    case IDM_NEW: return NewCalendar(window);
    case IDM_OPEN: return OpenCalendar(window);
    case IDM_SAVE:
      // An untitled calendar is saved under a new name.
      if (lstrcmpiA(App.path.c_str(), "Untitled.CLN") == 0) return (void)SendMessageA(window, WM_COMMAND, IDM_SAVE_AS, 0);
      SaveTo(window, App.path);
      return;
    case IDM_SAVE_AS: {
      // Only a new name goes on the recent-files list; Open adds nothing.
      std::string path;
      if (AskFileName(window, true, &path) && SaveTo(window, path)) AddRecentFile(window, path.c_str());
      return;
    }
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

void Scroll(HWND window, int bar, int request) {
  const int id = bar == SB_VERT ? kVerticalScrollId : kHorizontalScrollId;
  HWND control = GetDlgItem(window, id);
  SCROLLINFO info{sizeof info, SIF_ALL, 0, 0, 0, 0, 0};
  GetScrollInfo(control, SB_CTL, &info);
  int position = info.nPos;
  const int line = 32, page = static_cast<int>(info.nPage);
  switch (request) {
    case SB_LINEUP: position -= line; break;
    case SB_LINEDOWN: position += line; break;
    case SB_PAGEUP: position -= page; break;
    case SB_PAGEDOWN: position += page; break;
    case SB_TOP: position = info.nMin; break;
    case SB_BOTTOM: position = info.nMax; break;
    case SB_THUMBTRACK:
    case SB_THUMBPOSITION: position = info.nTrackPos; break;
    default: return;
  }
  info.fMask = SIF_POS;
  info.nPos = position;
  SetScrollInfo(control, SB_CTL, &info, TRUE);
  GetScrollInfo(control, SB_CTL, &info);
  (bar == SB_VERT ? App.scrollY : App.scrollX) = info.nPos;
  InvalidateRect(window, nullptr, TRUE);
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
  const struct {
    WPARAM key;
    int bar, request;
  } keys[] = {{VK_UP, SB_VERT, SB_LINEUP},     {VK_DOWN, SB_VERT, SB_LINEDOWN}, {VK_PRIOR, SB_VERT, SB_PAGEUP},
              {VK_NEXT, SB_VERT, SB_PAGEDOWN}, {VK_HOME, SB_VERT, SB_TOP},      {VK_END, SB_VERT, SB_BOTTOM},
              {VK_LEFT, SB_HORZ, SB_LINEUP},   {VK_RIGHT, SB_HORZ, SB_LINEDOWN}};
  for (const auto& k : keys)
    if (k.key == key) return Scroll(window, k.bar, k.request);
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
  g_pendingPath = path;
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
    case WM_PAINT: Paint(window); return 0;
    case WM_COMMAND: Command(window, LOWORD(wParam)); return 0;
    case WM_VSCROLL: Scroll(window, SB_VERT, LOWORD(wParam)); return 0;
    case WM_HSCROLL: Scroll(window, SB_HORZ, LOWORD(wParam)); return 0;
    case WM_MOUSEWHEEL:
      Scroll(window, SB_VERT, GET_WHEEL_DELTA_WPARAM(wParam) > 0 ? SB_LINEUP : SB_LINEDOWN);
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
