#include "pictures/paint_round_trip_win32.h"

#include <string>

#include "pictures/image_files.h"

namespace {

std::string TemporaryBmp() {
  char folder[MAX_PATH] = "";
  if (!GetTempPathA(sizeof folder, folder)) return "";
  static unsigned count = 0;
  return std::string(folder) + "Quernal-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++count) +
         ".bmp";
}

// The owner keeps painting while the program runs; its input waits.
bool WaitFor(HWND owner, HANDLE process) {
  const bool wasEnabled = owner && IsWindowEnabled(owner);
  if (wasEnabled) EnableWindow(owner, FALSE);
  for (;;) {
    const DWORD woke = MsgWaitForMultipleObjects(1, &process, FALSE, INFINITE, QS_ALLINPUT);
    if (woke == WAIT_OBJECT_0) break;
    if (woke != WAIT_OBJECT_0 + 1) return wasEnabled && EnableWindow(owner, TRUE), false;
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
      if (message.message == WM_QUIT) {
        PostQuitMessage(static_cast<int>(message.wParam));
        break;
      }
      TranslateMessage(&message);
      DispatchMessageA(&message);
    }
  }
  if (wasEnabled) EnableWindow(owner, TRUE);
  return true;
}

}  // namespace

BlockHandle PaintRoundTrip(HWND owner, const char* program, BlockHandle dib, bool maximized) {
  const std::string file = TemporaryBmp();
  if (!program || !*program || file.empty() || !WriteBmpFile(file.c_str(), dib)) return 0;
  std::string command = "\"" + std::string(program) + "\" \"" + file + "\"";
  STARTUPINFOA start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESHOWWINDOW;
  start.wShowWindow = static_cast<WORD>(maximized ? SW_SHOWMAXIMIZED : SW_SHOWNORMAL);
  PROCESS_INFORMATION running{};
  BlockHandle painted = 0;
  if (CreateProcessA(program, &command[0], nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &running)) {
    if (WaitFor(owner, running.hProcess)) painted = ReadImageFile(file.c_str(), nullptr);
    CloseHandle(running.hThread);
    CloseHandle(running.hProcess);
  }
  DeleteFileA(file.c_str());
  return painted;
}
