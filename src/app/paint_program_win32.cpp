#include "app/paint_program_win32.h"

#include <windows.h>

#include <string>

namespace {

bool IsFile(const char* path) {
  const DWORD attributes = GetFileAttributesA(path);
  return *path && attributes != INVALID_FILE_ATTRIBUTES && !(attributes & FILE_ATTRIBUTE_DIRECTORY);
}

// The Windows folder, the system folder and PATH, as one search path. PATH
// may quote a folder; the search wants it bare.
std::string SearchFolders() {
  char folder[MAX_PATH];
  std::string folders;
  if (GetWindowsDirectoryA(folder, sizeof folder)) folders += std::string(folder) + ";";
  if (GetSystemDirectoryA(folder, sizeof folder)) folders += std::string(folder) + ";";
  const DWORD n = GetEnvironmentVariableA("PATH", nullptr, 0);
  if (n) {
    std::string path(n, '\0');
    path.resize(GetEnvironmentVariableA("PATH", &path[0], n));
    for (char c : path)
      if (c != '"') folders += c;
  }
  return folders;
}

}  // namespace

bool FindPaintProgram(char* path, size_t size, const char* name, uint32_t search) {
  if (IsFile(path)) return true;
  if (!search || !name || !*name) return false;
  char found[MAX_PATH];
  const DWORD n = SearchPathA(SearchFolders().c_str(), name, nullptr, sizeof found, found, nullptr);
  if (n == 0 || n >= sizeof found || n >= size || !IsFile(found)) return false;
  lstrcpynA(path, found, static_cast<int>(size));
  return true;
}
