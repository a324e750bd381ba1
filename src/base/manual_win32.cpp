#include "base/manual_win32.h"

#include <shellapi.h>

#include <string>

#include "base/manual.h"
#include "base/program_win32.h"

namespace {

bool Launched(HINSTANCE result) { return reinterpret_cast<INT_PTR>(result) > 32; }

}  // namespace

bool OpenManual(HWND owner, const char* anchor) {
  const std::string folder = ProgramFolder();
  const std::string file = folder + kManualFile;
  const std::string url = ManualUrl(folder, anchor ? anchor : "");
  // Handing a file name to the shell loses the anchor, so the browser that
  // opens .htm files is given the whole URL; without one the shell gets the
  // URL, and as a last resort the plain file.
  char browser[MAX_PATH] = "";
  if (Launched(FindExecutableA(file.c_str(), nullptr, browser)) && browser[0] &&
      Launched(ShellExecuteA(owner, "open", browser, ("\"" + url + "\"").c_str(), nullptr, SW_SHOWNORMAL)))
    return true;
  if (Launched(ShellExecuteA(owner, "open", url.c_str(), nullptr, nullptr, SW_SHOWNORMAL))) return true;
  return Launched(ShellExecuteA(owner, "open", file.c_str(), nullptr, nullptr, SW_SHOWNORMAL));
}
