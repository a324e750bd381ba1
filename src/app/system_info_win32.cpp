#include "app/system_info_win32.h"

#include <cstdio>

#include "base/program_win32.h"
#include "config/settings.h"
#include "config/settings_file.h"
#include "print/printer_win32.h"
#include "res/main_ids.h"

namespace {

std::string WindowsVersion() {
  OSVERSIONINFOA version{};
  version.dwOSVersionInfoSize = sizeof version;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
  const bool known = GetVersionExA(&version) != FALSE;
#pragma GCC diagnostic pop
  char text[160] = "unknown";
  if (known)
    std::snprintf(text, sizeof text, "%lu.%lu (build %lu) %s", version.dwMajorVersion, version.dwMinorVersion,
                  version.dwBuildNumber, version.szCSDVersion);
  // Under Wine, its own version says more than the Windows it imitates.
  using WineVersion = const char*(CDECL*)();
  if (auto wine = reinterpret_cast<WineVersion>(
          reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version"))))
    return std::string(text) + ", Wine " + wine();
  return text;
}

std::string Printer() {
  char name[256] = "";
  DWORD size = sizeof name;
  if (!GetDefaultPrinterA(name, &size)) return "none";
  if (!PrinterDC) return name;
  char page[64];
  std::snprintf(page, sizeof page, ", page %d x %d mm", GetDeviceCaps(PrinterDC, HORZSIZE),
                GetDeviceCaps(PrinterDC, VERTSIZE));
  return name + std::string(page);
}

std::string Screen() {
  HDC screen = GetDC(nullptr);
  char text[96];
  std::snprintf(text, sizeof text, "%d x %d pixels, %d bits per pixel, %d dpi", GetSystemMetrics(SM_CXSCREEN),
                GetSystemMetrics(SM_CYSCREEN), GetDeviceCaps(screen, BITSPIXEL) * GetDeviceCaps(screen, PLANES),
                ScreenDpi());
  ReleaseDC(nullptr, screen);
  return text;
}

INT_PTR CALLBACK SystemInformationProc(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
  switch (message) {
    case WM_INITDIALOG:
      SetDlgItemTextA(dialog, IDC_SYSTEM_TEXT, SystemInformationText().c_str());
      return TRUE;
    case WM_COMMAND:
      if (LOWORD(wParam) == IDC_SYSTEM_COPY) {
        // The whole text, ready to paste into a message to whoever helps.
        SendDlgItemMessageA(dialog, IDC_SYSTEM_TEXT, EM_SETSEL, 0, -1);
        SendDlgItemMessageA(dialog, IDC_SYSTEM_TEXT, WM_COPY, 0, 0);
        return TRUE;
      }
      if (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL) {
        EndDialog(dialog, IDOK);
        return TRUE;
      }
      break;
  }
  return FALSE;
}

}  // namespace

std::string SystemInformationText() {
  char config[MAX_PATH] = "";
  if (!ConfigFolder(config, sizeof config)) std::snprintf(config, sizeof config, "unknown");
  const struct {
    const char* name;
    std::string value;
  } lines[] = {
      {"Version", std::string("1.0, built ") + __DATE__},
      {"Windows", WindowsVersion()},
      {"Screen", Screen()},
      {"Printer", Printer()},
      {"Program folder", ProgramFolder()},
      {"Settings folder", config},
      {"Theme", Settings.ThemeCurrent},
  };
  std::string text;
  for (const auto& line : lines) text += std::string(line.name) + ": " + line.value + "\r\n";
  return text;
}

void ShowSystemInformation(HWND owner) {
  DialogBoxParamA(GetModuleHandleA(nullptr), "SystemInformationBox", owner, SystemInformationProc, 0);
}
