#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include "base/replace_file.h"

namespace replace_file {

std::string FinalPath(const std::string& target) {
  HANDLE h = CreateFileA(target.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                         OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (h == INVALID_HANDLE_VALUE) return target;
  char path[MAX_PATH + 8];
  const DWORD length = GetFinalPathNameByHandleA(h, path, sizeof path, FILE_NAME_NORMALIZED);
  CloseHandle(h);
  if (length == 0 || length >= sizeof path) return target;
  std::string final(path, length);
  // "\\?\C:\..." names a drive path, "\\?\UNC\server\..." a share.
  if (final.compare(0, 8, "\\\\?\\UNC\\") == 0) return "\\\\" + final.substr(8);
  if (final.compare(0, 4, "\\\\?\\") == 0) return final.substr(4);
  return final;
}

std::FILE* CreateBeside(const std::string& target, bool text, std::string* temporary) {
  for (unsigned attempt = 0; attempt < 100; ++attempt) {
    const std::string name = target + "." + std::to_string(GetCurrentProcessId()) + "-" +
                             std::to_string(GetTickCount() + attempt) + ".tmp";
    HANDLE h = CreateFileA(name.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (h == INVALID_HANDLE_VALUE) {
      if (GetLastError() == ERROR_FILE_EXISTS || GetLastError() == ERROR_ALREADY_EXISTS) continue;
      return nullptr;
    }
    const int fd = _open_osfhandle(reinterpret_cast<intptr_t>(h), text ? _O_TEXT : _O_BINARY);
    std::FILE* file = fd >= 0 ? _fdopen(fd, text ? "wt" : "wb") : nullptr;
    if (!file) {
      if (fd >= 0) _close(fd); else CloseHandle(h);
      DeleteFileA(name.c_str());
      return nullptr;
    }
    *temporary = name;
    return file;
  }
  return nullptr;
}

bool FlushAndClose(std::FILE* file) {
  bool ok = std::fflush(file) == 0 && _commit(_fileno(file)) == 0;
  return std::fclose(file) == 0 && ok;
}

bool Replace(const std::string& temporary, const std::string& target, const char* backup) {
  if (backup) DeleteFileA(backup);
  // The system's replace keeps the target's attributes and security; a
  // target that does not exist yet is simply moved into place.
  if (GetFileAttributesA(target.c_str()) != INVALID_FILE_ATTRIBUTES)
    return ReplaceFileA(target.c_str(), temporary.c_str(), backup, REPLACEFILE_IGNORE_MERGE_ERRORS, nullptr,
                        nullptr) != 0;
  return MoveFileExA(temporary.c_str(), target.c_str(), MOVEFILE_WRITE_THROUGH) != 0;
}

}  // namespace replace_file
