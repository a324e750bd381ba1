#include "app/recent_files_win32.h"

#include "app/recent_files.h"
#include "res/main_ids.h"
#include "config/settings.h"

namespace {

int g_count = 0;  // entries on the menu now

HMENU FileMenu(HWND window) { return GetSubMenu(GetMenu(window), 0); }

bool FileExists(const char* path) { return GetFileAttributesA(path) != INVALID_FILE_ATTRIBUTES; }

}  // namespace

std::vector<std::string> RecentFiles(HWND window) {
  std::vector<std::string> list;
  for (int i = 0; i < g_count; ++i) list.push_back(RecentFileForCommand(window, IDM_RECENT_FIRST + i));
  return list;
}

std::string RecentFileForCommand(HWND window, int id) {
  if (id < IDM_RECENT_FIRST || id >= IDM_RECENT_FIRST + g_count) return "";
  char text[MAX_PATH + 1] = "";
  GetMenuStringA(FileMenu(window), id, text, sizeof text, MF_BYCOMMAND);
  return text;
}

void AddRecentFile(HWND window, const char* path) {
  std::vector<std::string> list = RecentFiles(window);
  if (!AddRecentPath(&list, path ? path : "", RecentFilesLimit(Settings.FileMenuRange), FileExists)) return;
  HMENU menu = FileMenu(window);
  for (int i = 0; i < g_count; ++i) DeleteMenu(menu, IDM_RECENT_FIRST + i, MF_BYCOMMAND);
  g_count = 0;
  for (const std::string& entry : list) AppendMenuA(menu, MF_STRING, IDM_RECENT_FIRST + g_count++, entry.c_str());
  DrawMenuBar(window);
}
