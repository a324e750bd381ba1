#include "dialog_driver.h"

#include <commctrl.h>
#include <dlgs.h>
#include <prsht.h>

#include <gtest/gtest.h>

#include <cstdlib>

namespace {
DialogDriver* active = nullptr;  // one driver at a time: the timer has no user data
constexpr DWORD kTimeLimitMs = 60000;

struct Search {
  const std::string* title;
  HWND found;
};

BOOL CALLBACK FindTitle(HWND window, LPARAM data) {
  auto* search = reinterpret_cast<Search*>(data);
  if (!IsWindowVisible(window) || TextOf(window) != *search->title) return TRUE;
  search->found = window;
  return FALSE;
}

// Closes whatever dialog a failed test left open: Cancel, or No for a
// question without one.
BOOL CALLBACK CloseDialog(HWND window, LPARAM) {
  PostMessageA(window, WM_COMMAND, IDCANCEL, 0);
  PostMessageA(window, WM_COMMAND, IDNO, 0);
  return TRUE;
}
}  // namespace

DialogDriver::DialogDriver() {
  if (const char* pause = std::getenv("QUERNAL_DIALOG_PAUSE_MS")) pause_ = static_cast<DWORD>(std::atoi(pause));
  active = this;
  started_ = GetTickCount();
  timer_ = SetTimer(nullptr, 0, 20, &DialogDriver::Tick);
}

DialogDriver::~DialogDriver() {
  KillTimer(nullptr, timer_);
  active = nullptr;
}

void DialogDriver::Then(const std::string& title, Action action) { steps_.push_back({title, std::move(action)}); }

void CALLBACK DialogDriver::Tick(HWND, UINT, UINT_PTR, DWORD) {
  if (active && !active->running_) active->Step();
}

void DialogDriver::Step() {
  if (GetTickCount() - started_ > kTimeLimitMs + pause_ * 8) return GiveUp();
  if (steps_.empty()) return;
  Search search{&steps_.front().title, nullptr};
  EnumThreadWindows(GetCurrentThreadId(), FindTitle, reinterpret_cast<LPARAM>(&search));
  if (!search.found) return (void)(seen_ = 0);
  if (!seen_) seen_ = GetTickCount();
  if (GetTickCount() - seen_ < pause_) return;
  seen_ = 0;
  const Entry entry = std::move(steps_.front());
  steps_.pop_front();
  running_ = true;
  entry.action(search.found);
  running_ = false;
}

void DialogDriver::GiveUp() {
  if (!timedOut_) ADD_FAILURE() << "no window titled \"" << (steps_.empty() ? "" : steps_.front().title) << "\" appeared";
  timedOut_ = true;
  EnumThreadWindows(GetCurrentThreadId(), CloseDialog, 0);
}

void Press(HWND dialog, int id) {
  PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), reinterpret_cast<LPARAM>(GetDlgItem(dialog, id)));
}

void SetCheck(HWND dialog, int id, bool checked) {
  SendDlgItemMessageA(dialog, id, BM_SETCHECK, checked ? BST_CHECKED : BST_UNCHECKED, 0);
  Press(dialog, id);
}

std::string TextOf(HWND window) {
  char text[1024] = "";
  GetWindowTextA(window, text, sizeof text);
  return text;
}

std::string ItemText(HWND dialog, int id) { return TextOf(GetDlgItem(dialog, id)); }

// A message box shows its text in a static control numbered 0xFFFF.
std::string MessageText(HWND box) { return ItemText(box, 0xFFFF); }

void Pump(int milliseconds, const std::function<bool()>& done) {
  const DWORD start = GetTickCount();
  while (!(done && done()) && GetTickCount() - start < static_cast<DWORD>(milliseconds)) {
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
      TranslateMessage(&message);
      DispatchMessageA(&message);
    }
    Sleep(10);
  }
}

std::vector<std::string> Entries(HWND dialog, int id) {
  char kind[32] = "";
  GetClassNameA(GetDlgItem(dialog, id), kind, sizeof kind);
  const bool combo = lstrcmpiA(kind, "ComboBox") == 0;
  const int count = static_cast<int>(SendDlgItemMessageA(dialog, id, combo ? CB_GETCOUNT : LB_GETCOUNT, 0, 0));
  std::vector<std::string> entries;
  for (int i = 0; i < count; ++i) {
    char text[300] = "";
    SendDlgItemMessageA(dialog, id, combo ? CB_GETLBTEXT : LB_GETTEXT, i, reinterpret_cast<LPARAM>(text));
    entries.push_back(text);
  }
  return entries;
}

HWND CurrentTab(HWND sheet) { return reinterpret_cast<HWND>(SendMessageA(sheet, PSM_GETCURRENTPAGEHWND, 0, 0)); }
bool Checked(HWND dialog, int id) { return IsDlgButtonChecked(dialog, id) == BST_CHECKED; }
bool Enabled(HWND dialog, int id) { return IsWindowEnabled(GetDlgItem(dialog, id)) != FALSE; }

void ChoosePictureFile(DialogDriver* driver, const std::string& path) {
  driver->Then("Open", [path](HWND dialog) {
    SetDlgItemTextA(dialog, cmb13, path.c_str());
    Press(dialog, IDOK);
  });
}

void TypeOnTabAndOk(DialogDriver* driver, const std::string& title, int tab, int id, const std::string& text) {
  driver->Then(title, [tab, id, text](HWND sheet) {
    SendMessageA(sheet, PSM_SETCURSEL, tab, 0);
    SetDlgItemTextA(CurrentTab(sheet), id, text.c_str());
    Press(sheet, IDOK);
  });
}
