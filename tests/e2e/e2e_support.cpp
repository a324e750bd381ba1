#include "e2e_support.h"

#include <shlobj.h>

#include <fstream>
#include <sstream>

#include "res/calendar_dialog_ids.h"
#include "res/main_ids.h"

namespace {

struct WindowSearch {
  DWORD pid;
  const std::string* text;
  bool byClass;
  HWND found;
};

BOOL CALLBACK MatchWindow(HWND w, LPARAM p) {
  auto* s = reinterpret_cast<WindowSearch*>(p);
  DWORD owner = 0;
  GetWindowThreadProcessId(w, &owner);
  char text[256] = "";
  if (s->byClass) GetClassNameA(w, text, sizeof text);
  else GetWindowTextA(w, text, sizeof text);
  if (owner != s->pid || !IsWindowVisible(w) || *s->text != text) return TRUE;
  s->found = w;
  return FALSE;
}

}  // namespace

std::string Environment(const char* name) {
  char value[1024];
  DWORD n = GetEnvironmentVariableA(name, value, sizeof value);
  return n > 0 && n < sizeof value ? value : "";
}

std::string WindowsPath(std::string path) {
  for (char& c : path)
    if (c == '/') c = '\\';
  return "Z:" + path;
}

std::string ConfigFolder() {
  char appData[MAX_PATH];
  SHGetFolderPathA(nullptr, CSIDL_APPDATA, nullptr, 0, appData);
  std::string folder = std::string(appData) + "\\Tarnwick\\";
  CreateDirectoryA(folder.c_str(), nullptr);
  return folder;
}

std::string ReadAll(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

void WriteSettings(const std::string& lines) {
  std::ofstream(ConfigFolder() + "QUERNL.INI") << "[Quernal]\nShowStartupWindow = 0\n" << lines;
}

std::string TempFolder() {
  char temp[MAX_PATH];
  GetTempPathA(sizeof temp, temp);
  std::string folder = std::string(temp) + "quernal-e2e\\";
  CreateDirectoryA(folder.c_str(), nullptr);
  return folder;
}

std::string FreshFile(const std::string& name) {
  const std::string path = TempFolder() + name;
  DeleteFileA(path.c_str());
  return path;
}

bool Exists(const std::string& path) { return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES; }

HWND FindProcessWindow(DWORD pid, const std::string& text, bool byClass) {
  WindowSearch search{pid, &text, byClass, nullptr};
  EnumWindows(MatchWindow, reinterpret_cast<LPARAM>(&search));
  return search.found;
}

HWND WaitForWindow(DWORD pid, const std::string& title, int milliseconds) {
  for (int waited = 0; waited <= milliseconds; waited += 100) {
    if (HWND w = FindProcessWindow(pid, title)) return w;
    Sleep(100);
  }
  return nullptr;
}

void WaitGone(HWND window) {
  for (int i = 0; i < 300 && IsWindow(window); ++i) Sleep(100);
}

HWND ToolbarStrip(HWND mainWindow) { return FindWindowExA(mainWindow, nullptr, "QuernalBar", nullptr); }

int PageViewHeight(HWND mainWindow) {
  RECT client, bar{0, 0, 0, 0};
  GetClientRect(mainWindow, &client);
  GetWindowRect(ToolbarStrip(mainWindow), &bar);
  return client.bottom - (bar.bottom - bar.top) - GetSystemMetrics(SM_CYHSCROLL);
}

std::vector<DWORD> ScreenPixels(int x, int y, int w, int h) {
  std::vector<DWORD> pixels(static_cast<size_t>(w) * h);
  HDC screen = GetDC(nullptr);
  HDC memory = CreateCompatibleDC(screen);
  HBITMAP bitmap = CreateCompatibleBitmap(screen, w, h);
  HGDIOBJ old = SelectObject(memory, bitmap);
  BitBlt(memory, 0, 0, w, h, screen, x, y, SRCCOPY);
  SelectObject(memory, old);
  BITMAPINFOHEADER info{sizeof info, w, -h, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  GetDIBits(memory, bitmap, 0, h, pixels.data(), reinterpret_cast<BITMAPINFO*>(&info), DIB_RGB_COLORS);
  DeleteObject(bitmap);
  DeleteDC(memory);
  ReleaseDC(nullptr, screen);
  return pixels;
}

void SaveShot(const char* name, HWND window) {
  const std::string folder = Environment("QUERNAL_SHOT_DIR");
  if (folder.empty()) return;
  Sleep(300);  // the window has painted
  RECT r{0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
  if (window) GetWindowRect(window, &r);
  const int w = r.right - r.left, h = r.bottom - r.top;
  const std::vector<DWORD> pixels = ScreenPixels(r.left, r.top, w, h);
  BITMAPINFOHEADER info{sizeof info, w, -h, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  const DWORD size = static_cast<DWORD>(pixels.size() * 4);
  BITMAPFILEHEADER file{0x4D42, static_cast<DWORD>(sizeof file + sizeof info + size), 0, 0, sizeof file + sizeof info};
  std::ofstream out(WindowsPath(folder) + "\\" + name + ".bmp", std::ios::binary);
  out.write(reinterpret_cast<const char*>(&file), sizeof file);
  out.write(reinterpret_cast<const char*>(&info), sizeof info);
  out.write(reinterpret_cast<const char*>(pixels.data()), size);
}

Quernal::Quernal(const std::string& arguments) {
  std::string command = "\"" + BesideTests("Quernal.exe") + "\"" + (arguments.empty() ? "" : " " + arguments);
  STARTUPINFOA si{};
  si.cb = sizeof si;
  // Started in its own folder, as its shortcut starts it: the first calendar
  // is made before the settings name the program's folder, so its events
  // list is found there.
  const std::string program = BesideTests("Quernal.exe");
  const std::string folder = program.substr(0, program.find_last_of('\\') + 1);
  started_ = CreateProcessA(nullptr, &command[0], nullptr, nullptr, FALSE, 0, nullptr, folder.c_str(), &si, &pi_);
}

Quernal::~Quernal() {
  if (!started_) return;
  if (WaitForSingleObject(pi_.hProcess, 0) == WAIT_TIMEOUT) TerminateProcess(pi_.hProcess, 1);
  CloseHandle(pi_.hProcess);
  CloseHandle(pi_.hThread);
}

HWND Quernal::MainWindow() {
  for (int i = 0; started_ && i < 300 && !window_; ++i) {
    window_ = FindProcessWindow(pid(), "QuernalApplication", true);
    HWND box = window_ ? nullptr : FindProcessWindow(pid(), "Message");
    if (box && MessageText(box).rfind("There does not appear to be a default printer", 0) == 0) Press(box, IDOK);
    if (!window_) Sleep(100);
  }
  // The zoom and page commands the window posts itself while it is made
  // come before a zoom posted now: once that one shows in the scroll bar,
  // the page commands a test sends find the window settled.
  if (window_) {
    const auto range = [this] {
      SCROLLINFO info{sizeof info, SIF_RANGE, 0, 0, 0, 0, 0};
      GetScrollInfo(GetDlgItem(window_, 703), SB_CTL, &info);
      return info.nMax;
    };
    const int before = range();
    PostMessageA(window_, WM_COMMAND, IDM_ZOOM_200, 0);
    for (int i = 0; i < 300 && range() == before; ++i) Sleep(100);
    Do(WM_COMMAND, IDM_ZOOM_100);
  }
  return window_;
}

std::string Quernal::Title() const { return TextOf(window_); }

std::string Quernal::TitleStartingWith(const std::string& prefix) const {
  for (int i = 0; i < 100 && Title().rfind(prefix, 0) != 0; ++i) Sleep(100);
  return Title();
}

HWND Quernal::Wait(const std::string& title, int milliseconds) const {
  return WaitForWindow(pid(), title, milliseconds);
}

void Quernal::Command(int id) const { PostMessageA(window_, WM_COMMAND, id, 0); }

void Quernal::Do(UINT message, WPARAM wParam) const {
  SendMessageTimeoutA(window_, message, wParam, 0, SMTO_NORMAL, 20000, nullptr);
}

bool Quernal::Settle() const {
  return SendMessageTimeoutA(window_, WM_NULL, 0, 0, SMTO_NORMAL, 180000, nullptr) != 0;
}

void Quernal::ChangeCalendar() const {
  Command(IDM_REPLICATE);
  HWND dialog = Wait("Replicate");
  if (!dialog) return;
  Press(dialog, IDC_REPLICATE_ALL);
  Press(dialog, IDOK);
  WaitGone(dialog);
}

bool Quernal::Close() {
  PostMessageA(window_, WM_SYSCOMMAND, SC_CLOSE, 0);
  return Ended();
}

bool Quernal::Ended() const { return WaitForSingleObject(pi_.hProcess, 30000) == WAIT_OBJECT_0; }

std::string BesideTests(const std::string& name) {
  char path[MAX_PATH];
  const DWORD n = GetModuleFileNameA(nullptr, path, sizeof path);
  const std::string p(path, n);
  return p.substr(0, p.find_last_of('\\') + 1) + name;
}

std::string Quernal::SaveAs(const std::string& path) const {
  Command(IDM_SAVE_AS);
  HWND dialog = Wait("Save As");
  if (!dialog) return "";
  ChooseFile(dialog, path);
  return TitleStartingWith("Quernal [ " + path.substr(path.find_last_of('\\') + 1));
}
