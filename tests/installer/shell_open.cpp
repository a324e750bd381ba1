// Opens a file as a double click does (the Start-menu shortcut, a calendar
// through its file type), prints the program the shell started and its
// title, optionally saves the calendar under a new name, and closes the
// program as a user does, so that it writes its settings.
//   quernal_shell_open.exe [--title NAME] [--running] FILE [SAVE_AS]
// A calendar is open once the title names it; --title names the calendar a
// shortcut opens. --running opens nothing: the program was started by
// another way (a Linux launcher) and FILE names what it opened.
#include <windows.h>

#include <cstdio>
#include <string>

#include "e2e/e2e_support.h"

namespace {

// Waits for the main window's title to start with `prefix`, answering the
// message boxes that come meanwhile (no printer, an unreadable file).
void WaitForTitle(HWND& window, const std::string& prefix) {
  char title[512] = "";
  for (int i = 0; i < 300; ++i, Sleep(100)) {
    if (HWND box = FindWindowA("#32770", "Message")) {
      std::printf("message: %s\n", MessageText(box).c_str());
      Press(box, IDOK);
      WaitGone(box);
    }
    if (!window) window = FindWindowA("QuernalApplication", nullptr);
    if (window && GetWindowTextA(window, title, sizeof title) && std::string(title).rfind(prefix, 0) == 0) break;
  }
  std::printf("title: %s\n", title);
}

}  // namespace

int main(int argc, char** argv) {
  std::string name;
  bool running = false;
  for (; argc > 2 && argv[1][0] == '-'; --argc, ++argv) {
    if (std::string(argv[1]) == "--running") {
      running = true;
    } else if (std::string(argv[1]) == "--title" && argc > 3) {
      name = argv[2];
      --argc, ++argv;
    }
  }
  if (argc < 2) return 2;
  if (!running && reinterpret_cast<INT_PTR>(ShellExecuteA(nullptr, nullptr, argv[1], nullptr, nullptr, SW_SHOWNORMAL)) <= 32)
    return 1;
  const std::string file = argv[1];
  if (name.empty() && file.size() > 4 && lstrcmpiA(file.c_str() + file.size() - 4, ".CLN") == 0)
    name = file.substr(file.find_last_of('\\') + 1);
  HWND window = nullptr;
  WaitForTitle(window, "Quernal [ " + name);
  if (!window) return 1;
  DWORD pid = 0;
  GetWindowThreadProcessId(window, &pid);
  HANDLE process = OpenProcess(SYNCHRONIZE | PROCESS_QUERY_LIMITED_INFORMATION, FALSE, pid);
  char image[MAX_PATH] = "";
  DWORD size = sizeof image;
  QueryFullProcessImageNameA(process, 0, image, &size);
  std::printf("program: %s\n", image);

  if (argc > 2) {
    const std::string path = argv[2];
    PostMessageA(window, WM_COMMAND, 104, 0);  // File, Save as
    if (HWND dialog = WaitForWindow(pid, "Save As", 30000)) ChooseFile(dialog, path);
    WaitForTitle(window, "Quernal [ " + path.substr(path.find_last_of('\\') + 1));
  }
  PostMessageA(window, WM_SYSCOMMAND, SC_CLOSE, 0);
  return WaitForSingleObject(process, 30000) == WAIT_OBJECT_0 ? 0 : 1;
}
