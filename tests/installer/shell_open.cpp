// Opens a file as the shell does on a double click (the Start-menu shortcut,
// a calendar through its file type), waits for Quernal's main window and
// prints what the installer test checks: the program the shell started, a
// shortcut's target and working folder, and the window's title. Then the
// program is closed as a user closes it, so it writes its settings.
//   quernal_shell_open.exe [--expect TITLE_START] [--save-as WINDOWS_PATH] FILE
// Exits with 0 when the window came (with that title), the calendar was saved
// under the new name and the program ended.
#include <windows.h>
#include <shlobj.h>
#include <tlhelp32.h>

#include <cstdio>
#include <string>

#include "e2e/e2e_support.h"

namespace {

// The main window of the program the shell started; a message box that
// comes instead (no printer, a file that could not be read) is printed and
// answered.
HWND MainWindowOf(DWORD pid) {
  for (int i = 0; i < 600; ++i) {
    if (HWND w = FindProcessWindow(pid, "QuernalApplication", true)) return w;
    if (HWND box = FindProcessWindow(pid, "Message")) {
      std::printf("message: %s\n", MessageText(box).c_str());
      Press(box, IDOK);
      WaitGone(box);
    }
    Sleep(100);
  }
  return nullptr;
}

std::string Title(HWND w) {
  char text[512] = "";
  GetWindowTextA(w, text, sizeof text);
  return text;
}

// The title once it starts with `prefix` (the posted Open has run); an
// error box shown meanwhile is printed and answered.
std::string WaitForTitle(HWND w, DWORD pid, const std::string& prefix) {
  for (int i = 0; i < 300 && Title(w).rfind(prefix, 0) != 0; ++i) {
    if (HWND box = FindProcessWindow(pid, "Message")) {
      std::printf("message: %s\n", MessageText(box).c_str());
      Press(box, IDOK);
      WaitGone(box);
    }
    Sleep(100);
  }
  return Title(w);
}

// The Quernal.exe process, for a shell that started it and gave no handle
// (Wine's does so for a shortcut).
HANDLE FindQuernal() {
  for (int i = 0; i < 300; ++i) {
    HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    PROCESSENTRY32 entry{};
    entry.dwSize = sizeof entry;
    DWORD pid = 0;
    for (BOOL more = Process32First(snapshot, &entry); more && !pid; more = Process32Next(snapshot, &entry))
      if (lstrcmpiA(entry.szExeFile, "Quernal.exe") == 0) pid = entry.th32ProcessID;
    CloseHandle(snapshot);
    if (pid) return OpenProcess(SYNCHRONIZE | PROCESS_QUERY_LIMITED_INFORMATION | PROCESS_TERMINATE, FALSE, pid);
    Sleep(100);
  }
  return nullptr;
}

void PrintShortcut(const std::string& path) {
  CoInitialize(nullptr);
  IShellLinkA* link = nullptr;
  IPersistFile* file = nullptr;
  if (SUCCEEDED(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkA,
                                 reinterpret_cast<void**>(&link))) &&
      SUCCEEDED(link->QueryInterface(IID_IPersistFile, reinterpret_cast<void**>(&file)))) {
    wchar_t wide[MAX_PATH];
    MultiByteToWideChar(CP_ACP, 0, path.c_str(), -1, wide, MAX_PATH);
    char target[MAX_PATH] = "", folder[MAX_PATH] = "";
    if (SUCCEEDED(file->Load(wide, STGM_READ))) {
      link->GetPath(target, MAX_PATH, nullptr, 0);
      link->GetWorkingDirectory(folder, MAX_PATH);
    }
    std::printf("shortcut target: %s\nshortcut folder: %s\n", target, folder);
  }
  if (file) file->Release();
  if (link) link->Release();
}

}  // namespace

int main(int argc, char** argv) {
  std::string expect = "Quernal [ ", saveAs, target;
  for (int i = 1; i < argc; ++i) {
    const std::string a = argv[i];
    if (a == "--expect" && i + 1 < argc) expect = argv[++i];
    else if (a == "--save-as" && i + 1 < argc) saveAs = argv[++i];
    else target = a;
  }
  if (target.size() > 4 && lstrcmpiA(target.c_str() + target.size() - 4, ".lnk") == 0) PrintShortcut(target);

  SHELLEXECUTEINFOA run{};
  run.cbSize = sizeof run;
  run.fMask = SEE_MASK_NOCLOSEPROCESS | SEE_MASK_FLAG_NO_UI;
  run.lpFile = target.c_str();
  run.nShow = SW_SHOWNORMAL;
  if (ShellExecuteExA(&run) && !run.hProcess) run.hProcess = FindQuernal();
  if (!run.hProcess) {
    std::printf("the shell started nothing for %s (error %lu)\n", target.c_str(), GetLastError());
    return 1;
  }
  const DWORD pid = GetProcessId(run.hProcess);
  char image[MAX_PATH] = "";
  DWORD size = sizeof image;
  QueryFullProcessImageNameA(run.hProcess, 0, image, &size);
  std::printf("program: %s\n", image);

  HWND window = MainWindowOf(pid);
  if (!window) {
    std::printf("no main window\n");
    TerminateProcess(run.hProcess, 1);
    return 1;
  }
  std::string title = WaitForTitle(window, pid, expect);
  std::printf("title: %s\n", title.c_str());
  bool ok = title.rfind(expect, 0) == 0;

  if (ok && !saveAs.empty()) {
    PostMessageA(window, WM_COMMAND, 104, 0);  // File, Save as
    HWND dialog = WaitForWindow(pid, "Save As", 30000);
    if (dialog) ChooseFile(dialog, saveAs);
    title = WaitForTitle(window, pid, "Quernal [ " + saveAs.substr(saveAs.find_last_of('\\') + 1));
    std::printf("saved: %s\n", title.c_str());
    ok = dialog && title.rfind("Quernal [ " + saveAs.substr(saveAs.find_last_of('\\') + 1), 0) == 0;
  }

  PostMessageA(window, WM_SYSCOMMAND, SC_CLOSE, 0);
  if (WaitForSingleObject(run.hProcess, 30000) != WAIT_OBJECT_0) {
    std::printf("the program did not end\n");
    TerminateProcess(run.hProcess, 1);
    ok = false;
  }
  CloseHandle(run.hProcess);
  return ok ? 0 : 1;
}
