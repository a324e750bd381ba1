// The configuration folder is the shell's per-user application-data folder
// plus "Tarnwick". The program never creates it.
#include <windows.h>
#include <shlobj.h>

#include <cstring>

#include "base/text.h"
#include "config/settings_file.h"

namespace {
// Appends `text` when the result stays below MAX_PATH characters.
void AppendIfRoom(char* path, const char* text) {
  if (std::strlen(path) + std::strlen(text) < MAX_PATH) std::strcat(path, text);
}
void AppendSeparator(char* path) {
  size_t n = std::strlen(path);
  if (n > 0 && path[n - 1] != '\\') AppendIfRoom(path, "\\");
}
}  // namespace

bool ConfigFolder(char* buffer, size_t size) {
  LPITEMIDLIST list = nullptr;
  if (FAILED(SHGetSpecialFolderLocation(nullptr, CSIDL_APPDATA, &list)) || !list) return false;
  char path[MAX_PATH + 16] = "";
  BOOL ok = SHGetPathFromIDListA(list, path);
  CoTaskMemFree(list);
  if (!ok) return false;
  AppendSeparator(path);
  AppendIfRoom(path, "Tarnwick");
  AppendSeparator(path);
  if (std::strlen(path) + 1 > size) return false;
  CopyText(buffer, size, path);
  return true;
}

const char* ConfigFile(const char* name) {
  static char path[MAX_PATH * 2];
  char folder[MAX_PATH + 16];
  path[0] = 0;
  if (ConfigFolder(folder, sizeof folder)) {
    CopyText(path, sizeof path, folder);
    AppendIfRoom(path, name);
  }
  return path;
}
