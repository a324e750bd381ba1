// Starting Quernal.exe and driving it from outside, as a user does: its
// windows are found by process and title, buttons pressed by posted clicks.
#pragma once
#include <windows.h>

#include <string>
#include <vector>

#include "tests/win32/dialog_driver.h"

std::string Environment(const char* name);
// A file beside this test program (where the build puts Quernal.exe and the
// files the tests use).
std::string BesideTests(const std::string& name);
// A Unix path as a Windows program sees it, on Wine's drive Z:.
std::string WindowsPath(std::string path);
// The configuration folder, made as an installer would make it.
std::string ConfigFolder();
std::string ReadAll(const std::string& path);
// QUERNL.INI with `lines`; the start-up screen stays away.
void WriteSettings(const std::string& lines = "");
// A folder of this test's own for calendar files.
std::string TempFolder();
// The path of `name` in that folder, with no file there yet.
std::string FreshFile(const std::string& name);
bool Exists(const std::string& path);

// A visible top-level window of process `pid` with this title (or class).
HWND FindProcessWindow(DWORD pid, const std::string& text, bool byClass = false);
HWND WaitForWindow(DWORD pid, const std::string& title, int milliseconds);
// Waits until a window has closed, so that a dialog with the same title
// found next is a new one.
void WaitGone(HWND window);


// The main window's toolbar strip.
HWND ToolbarStrip(HWND mainWindow);
// The height of the main window's page view: its client area below the
// toolbar strip and above the horizontal scroll bar.
int PageViewHeight(HWND mainWindow);

// The screen's pixels in a rectangle, 0x00RRGGBB, row by row.
std::vector<DWORD> ScreenPixels(int x, int y, int w, int h);
// With QUERNAL_SHOT_DIR set (a Unix folder), `window` (or the whole screen)
// as the screen shows it is kept there as NAME.bmp for people to look at.
void SaveShot(const char* name, HWND window = nullptr);

class Quernal {
 public:
  // Starts Quernal.exe beside this test with `arguments` as its command line.
  explicit Quernal(const std::string& arguments = "");
  ~Quernal();
  Quernal(const Quernal&) = delete;
  Quernal& operator=(const Quernal&) = delete;

  // The main window, waited for. A message that there is no printer, which
  // comes before it on a machine without one, is answered.
  HWND MainWindow();
  HWND window() const { return window_; }
  DWORD pid() const { return pi_.dwProcessId; }
  std::string Title() const;
  // The title once it starts with `prefix`, or as it is after a wait.
  std::string TitleStartingWith(const std::string& prefix) const;
  // A window of the program, such as a dialog it shows.
  HWND Wait(const std::string& title, int milliseconds = 30000) const;
  // A command given as the menu gives it; it may open a dialog, so nobody waits.
  void Command(int id) const;
  // A message that opens nothing, handled before this returns.
  void Do(UINT message, WPARAM wParam) const;
  // Waits until the program is back in its message loop (a print job ends
  // after its last page went to the spooler, which takes a while).
  bool Settle() const;
  // The calendar changes: this month's design is copied onto the others.
  void ChangeCalendar() const;
  // File, Save as under `path` (a Windows path): the title once it names
  // the file, or empty when no dialog came.
  std::string SaveAs(const std::string& path) const;
  // Closes the window as the user does and waits for the program to end.
  bool Close();
  bool Ended() const;

 private:
  PROCESS_INFORMATION pi_{};
  bool started_ = false;
  HWND window_ = nullptr;
};
