#include "base/program_win32.h"

std::string ProgramFolder() {
  char path[MAX_PATH];
  const DWORD n = GetModuleFileNameA(nullptr, path, sizeof path);
  const std::string file(path, n < sizeof path ? n : 0);
  return file.substr(0, file.find_last_of('\\') + 1);
}

std::string StringTableText(UINT id) {
  char text[1024];
  if (LoadStringA(GetModuleHandleA(nullptr), id, text, sizeof text) > 0) return text;
  return "String table error - this application may be damaged";
}

int ShowMessage(HWND owner, UINT id, UINT flags) {
  return MessageBoxA(owner, StringTableText(id).c_str(), "Message", flags);
}

int ScreenDpi() {
  HDC screen = GetDC(nullptr);
  const int dpi = GetDeviceCaps(screen, LOGPIXELSY);
  ReleaseDC(nullptr, screen);
  return dpi > 0 ? dpi : 96;
}

int ScaledForScreen(int pixels) { return MulDiv(pixels, ScreenDpi(), 96); }
