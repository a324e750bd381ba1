#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <string>

#include "base/replace_file.h"

namespace {

// The temporary files are "~qrnXXXX.tmp" in the target's folder: short, so
// that a target the program can open (up to MAX_PATH) always has room for
// one beside it. A writer keeps its file open without sharing, so one that
// can be deleted is one whose writer is gone.
constexpr wchar_t kTemporaryPattern[] = L"~qrn*.tmp";

std::wstring Wide(const std::string& text) {
  const int n = MultiByteToWideChar(CP_ACP, 0, text.c_str(), -1, nullptr, 0);
  std::wstring wide(n > 0 ? n : 1, L'\0');
  if (n > 0) MultiByteToWideChar(CP_ACP, 0, text.c_str(), -1, &wide[0], n);
  wide.resize(wide.size() - 1);
  return wide;
}

std::string Narrow(const std::wstring& wide) {
  const int n = WideCharToMultiByte(CP_ACP, 0, wide.c_str(), -1, nullptr, 0, nullptr, nullptr);
  std::string text(n > 0 ? n : 1, '\0');
  if (n > 0) WideCharToMultiByte(CP_ACP, 0, wide.c_str(), -1, &text[0], n, nullptr, nullptr);
  text.resize(text.size() - 1);
  return text;
}

// The path in the form every file call takes at any length: absolute, and
// "\\?\" before it (or "\\?\UNC\" for a share).
std::wstring LongPath(const std::string& path) {
  const std::wstring wide = Wide(path);
  if (wide.compare(0, 4, L"\\\\?\\") == 0) return wide;
  const DWORD n = GetFullPathNameW(wide.c_str(), 0, nullptr, nullptr);
  if (n == 0) return wide;
  std::wstring full(n, L'\0');
  const DWORD got = GetFullPathNameW(wide.c_str(), n, &full[0], nullptr);
  if (got == 0 || got >= n) return wide;
  full.resize(got);
  if (full.compare(0, 2, L"\\\\") == 0) return L"\\\\?\\UNC\\" + full.substr(2);
  return L"\\\\?\\" + full;
}

std::wstring FolderOf(const std::wstring& path) {
  const size_t slash = path.find_last_of(L"\\/");
  return slash == std::wstring::npos ? L"." : path.substr(0, slash);
}

void RemoveStaleTemporaries(const std::wstring& folder) {
  WIN32_FIND_DATAW found;
  HANDLE search = FindFirstFileW((folder + L"\\" + kTemporaryPattern).c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) return;
  do {
    if (!(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)) DeleteFileW((folder + L"\\" + found.cFileName).c_str());
  } while (FindNextFileW(search, &found));
  FindClose(search);
}

WriteProblem ProblemOf(DWORD error) {
  return error == ERROR_ACCESS_DENIED || error == ERROR_WRITE_PROTECT ? WriteProblem::kFolderRefuses
                                                                       : WriteProblem::kWriteFailed;
}

}  // namespace

namespace replace_file {

std::string FinalPath(const std::string& target) {
  HANDLE h = CreateFileW(LongPath(target).c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                         nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (h == INVALID_HANDLE_VALUE) return target;
  wchar_t path[32768];
  const DWORD length = GetFinalPathNameByHandleW(h, path, sizeof path / sizeof path[0], FILE_NAME_NORMALIZED);
  CloseHandle(h);
  if (length == 0 || length >= sizeof path / sizeof path[0]) return target;
  std::wstring final(path, length);
  // "\\?\C:\..." names a drive path, "\\?\UNC\server\..." a share.
  if (final.compare(0, 8, L"\\\\?\\UNC\\") == 0) return Narrow(L"\\\\" + final.substr(8));
  if (final.compare(0, 4, L"\\\\?\\") == 0) return Narrow(final.substr(4));
  return Narrow(final);
}

WriteProblem CheckTarget(const std::string& target) {
  const std::wstring path = LongPath(target);
  const DWORD attributes = GetFileAttributesW(path.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) {
    const DWORD error = GetLastError();
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND ? WriteProblem::kNone
                                                                          : WriteProblem::kNotAFile;
  }
  if (attributes & FILE_ATTRIBUTE_DIRECTORY) return WriteProblem::kNotAFile;
  if (attributes & FILE_ATTRIBUTE_READONLY) return WriteProblem::kWriteProtected;
  // A device (CON, a pipe) is no file on a disk.
  HANDLE h = CreateFileW(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                         OPEN_EXISTING, 0, nullptr);
  if (h == INVALID_HANDLE_VALUE) return WriteProblem::kNone;
  const DWORD type = GetFileType(h);
  CloseHandle(h);
  return type == FILE_TYPE_DISK ? WriteProblem::kNone : WriteProblem::kNotAFile;
}

std::FILE* CreateBeside(const std::string& target, bool text, std::string* temporary, WriteProblem* problem) {
  const std::wstring folder = FolderOf(LongPath(target));
  RemoveStaleTemporaries(folder);
  const DWORD seed = GetTickCount() ^ (GetCurrentProcessId() << 16);
  for (unsigned attempt = 0; attempt < 1000; ++attempt) {
    wchar_t name[16];
    wsprintfW(name, L"~qrn%04X.tmp", static_cast<unsigned>((seed + attempt * 7919) & 0xFFFF));
    const std::wstring path = folder + L"\\" + name;
    HANDLE h = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (h == INVALID_HANDLE_VALUE) {
      const DWORD error = GetLastError();
      if (error == ERROR_FILE_EXISTS || error == ERROR_ALREADY_EXISTS) continue;
      *problem = ProblemOf(error);
      return nullptr;
    }
    const int fd = _open_osfhandle(reinterpret_cast<intptr_t>(h), text ? _O_TEXT : _O_BINARY);
    std::FILE* file = fd >= 0 ? _fdopen(fd, text ? "wt" : "wb") : nullptr;
    if (!file) {
      if (fd >= 0) _close(fd); else CloseHandle(h);
      DeleteFileW(path.c_str());
      *problem = WriteProblem::kWriteFailed;
      return nullptr;
    }
    *temporary = Narrow(path);
    return file;
  }
  *problem = WriteProblem::kWriteFailed;
  return nullptr;
}

void Discard(const std::string& temporary) { DeleteFileW(LongPath(temporary).c_str()); }

bool FlushAndClose(std::FILE* file) {
  bool ok = std::fflush(file) == 0 && _commit(_fileno(file)) == 0;
  return std::fclose(file) == 0 && ok;
}

bool Replace(const std::string& temporary, const std::string& target, const char* backup) {
  const std::wstring from = LongPath(temporary), to = LongPath(target);
  const std::wstring kept = backup ? LongPath(backup) : std::wstring();
  if (backup) DeleteFileW(kept.c_str());
  // The system's replace keeps the target's attributes and security; a
  // target that does not exist yet is simply moved into place.
  if (GetFileAttributesW(to.c_str()) != INVALID_FILE_ATTRIBUTES)
    return ReplaceFileW(to.c_str(), from.c_str(), backup ? kept.c_str() : nullptr, REPLACEFILE_IGNORE_MERGE_ERRORS,
                        nullptr, nullptr) != 0;
  return MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_WRITE_THROUGH) != 0;
}

}  // namespace replace_file
