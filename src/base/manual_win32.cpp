#include "base/manual_win32.h"

#include <shellapi.h>

#include <cstdio>
#include <string>
#include <vector>

#include "base/manual.h"
#include "res/string_ids.h"
#include "base/program_win32.h"

namespace {

// A browser that gives up does so at once (Wine's winebrowser, finding no
// browser to hand the page to, exits with 1); one still running after this
// long has taken the page.
constexpr DWORD kGiveUpMs = 1500;

bool Launched(HWND owner, const std::string& file, const std::string& parameters) {
  SHELLEXECUTEINFOA info{};
  info.cbSize = sizeof info;
  info.fMask = SEE_MASK_NOCLOSEPROCESS | SEE_MASK_FLAG_NO_UI;
  info.hwnd = owner;
  info.lpVerb = "open";
  info.lpFile = file.c_str();
  info.lpParameters = parameters.empty() ? nullptr : parameters.c_str();
  info.nShow = SW_SHOWNORMAL;
  if (!ShellExecuteExA(&info)) return false;
  if (!info.hProcess) return true;  // handed to a program already running
  DWORD code = 0;
  const bool gaveUp = WaitForSingleObject(info.hProcess, kGiveUpMs) == WAIT_OBJECT_0 &&
                      GetExitCodeProcess(info.hProcess, &code) && code != 0;
  CloseHandle(info.hProcess);
  return !gaveUp;
}

void SayWhy(HWND owner, UINT id, const std::string& file) {
  const std::string format = StringTableText(id);
  std::vector<char> text(format.size() + file.size() + 1);
  std::snprintf(text.data(), text.size(), format.c_str(), file.c_str());
  MessageBoxA(owner, text.data(), "Message", MB_OK | MB_ICONINFORMATION);
}

}  // namespace

bool (*g_askFirst)(HWND owner) = nullptr;

void SetManualQuestion(bool (*ask)(HWND owner)) { g_askFirst = ask; }

bool OpenManual(HWND owner, const char* anchor) {
  if (g_askFirst && !g_askFirst(owner)) return false;
  const std::string folder = ProgramFolder();
  const std::string file = folder + kManualFile;
  if (GetFileAttributesA(file.c_str()) == INVALID_FILE_ATTRIBUTES) return SayWhy(owner, IDS_MANUAL_MISSING, file), false;
  const std::string url = ManualUrl(folder, anchor ? anchor : "");
  // Handing a file name to the shell loses the anchor, so the browser that
  // opens .htm files is given the whole URL; without one the shell gets the
  // URL, and as a last resort the plain file.
  char browser[MAX_PATH] = "";
  if (reinterpret_cast<INT_PTR>(FindExecutableA(file.c_str(), nullptr, browser)) > 32 && browser[0] &&
      Launched(owner, browser, "\"" + url + "\""))
    return true;
  if (Launched(owner, url, "") || Launched(owner, file, "")) return true;
  SayWhy(owner, IDS_MANUAL_NO_BROWSER, file);
  return false;
}
