#include "app/calendar_files_win32.h"

#include <commdlg.h>
#include <shlobj.h>

#include "app/app_state_win32.h"
#include "app/main_window_win32.h"
#include "app/recent_files_win32.h"
#include "app/window_layout.h"
#include "base/program_win32.h"
#include "base/replace_file.h"
#include "base/text.h"
#include "calendar/calendar_dates.h"
#include "calendar/calendar_file.h"
#include "config/settings.h"
#include "print/status_box_win32.h"
#include "res/main_ids.h"
#include "res/string_ids.h"

namespace {

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


}  // namespace

// Message 111 when the calendar has changed; Yes saves it first.
void CheckUnsavedChanges(HWND window) {
  CalendarHeader header;
  if (!GetHeader(App.document, &header) || !header.Changed) return;
  if (ShowMessage(window, IDS_UNSAVED_CHANGES, MB_YESNO | MB_ICONQUESTION) == IDYES)
    SendMessageA(window, WM_COMMAND, IDM_SAVE, 0);
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

void QueueCalendarToOpen(const std::string& path) { g_pendingPath = path; }

void SaveCalendarCommand(HWND window) {
  if (lstrcmpiA(App.path.c_str(), "Untitled.CLN") == 0) return (void)SendMessageA(window, WM_COMMAND, IDM_SAVE_AS, 0);
  SaveTo(window, App.path);
}

void SaveCalendarAs(HWND window) {
  std::string path;
  if (AskFileName(window, true, &path) && SaveTo(window, path)) AddRecentFile(window, path.c_str());
}
