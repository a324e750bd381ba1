#include "dialog_driver.h"

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
