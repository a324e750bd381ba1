#include "app/picture_commands_win32.h"

#include <cstdio>
#include <cstring>

#include "app/app_state_win32.h"
#include "app/calendar_files_win32.h"
#include "app/main_window_win32.h"
#include "app/page_view_win32.h"
#include "app/picture_clipboard_win32.h"
#include "base/program_win32.h"
#include "base/text.h"
#include "calendar/calendar_file.h"
#include "pictures/page_picture_win32.h"
#include "res/main_ids.h"
#include "res/string_ids.h"

namespace {

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

}  // namespace

BlockHandle PagePicture() {
  MonthPage page;
  const int shown = CurrentPage();
  return shown < 12 && GetMonthPage(App.document, shown, &page) ? page.Picture : 0;
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

void FilesDropped(HWND window, HDROP drop) {
  char path[MAX_PATH] = "";
  const bool one = DragQueryFileA(drop, 0, path, sizeof path) > 0;
  DragFinish(drop);
  if (!one) return;
  if (IsCalendarFile(path)) {
    QueueCalendarToOpen(path);
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

