// Driving dialogs as a user does; the end-to-end tests use the functions
// below DialogDriver on the program's windows too.
//
// Drives the modal dialogs that a test opens, from inside the test's own
// thread: a timer, dispatched by the dialogs' own message loops, waits for a
// window with the next expected title and runs that step on it. Steps press
// buttons by posting, so a dialog that opens another modal dialog returns to
// the loop at once and the next step can find the new window.
#pragma once
#include <windows.h>

#include <deque>
#include <functional>
#include <string>
#include <vector>

class DialogDriver {
 public:
  using Action = std::function<void(HWND window)>;
  DialogDriver();
  ~DialogDriver();
  DialogDriver(const DialogDriver&) = delete;
  DialogDriver& operator=(const DialogDriver&) = delete;

  // When a visible window of this thread titled `title` appears, `action`
  // runs once on it. Steps run in the order they were added.
  void Then(const std::string& title, Action action);
  // Every step ran before the time ran out.
  bool Finished() const { return steps_.empty() && !timedOut_; }

 private:
  static void CALLBACK Tick(HWND, UINT, UINT_PTR, DWORD);
  void Step();
  void GiveUp();

  struct Entry {
    std::string title;
    Action action;
  };
  std::deque<Entry> steps_;
  UINT_PTR timer_ = 0;
  DWORD started_ = 0, seen_ = 0;
  DWORD pause_ = 0;  // QUERNAL_DIALOG_PAUSE_MS: time to look at each window
  bool running_ = false, timedOut_ = false;
};

// Runs this thread's messages for `milliseconds`, or until `done` says so.
void Pump(int milliseconds, const std::function<bool()>& done = nullptr);
// The texts of a list box's or combo box's entries, in order.
std::vector<std::string> Entries(HWND dialog, int id);

// Presses a button of `dialog` as a click does, by a posted notification.
void Press(HWND dialog, int id);
// Ticks or clears a check box and tells its dialog, as a click does.
void SetCheck(HWND dialog, int id, bool checked);
// The text of a window or of a dialog's control.
std::string TextOf(HWND window);
std::string ItemText(HWND dialog, int id);
// The text of a message box (its static text control).
std::string MessageText(HWND box);

// A property sheet's tab in front, and a control's state on it.
HWND CurrentTab(HWND sheet);
bool Checked(HWND dialog, int id);
bool Enabled(HWND dialog, int id);
// Types a name into the file dialog and presses OK.
void ChooseFile(HWND dialog, const std::string& path);
// The next step: the picture-open dialog chooses `path`.
void ChoosePictureFile(DialogDriver* driver, const std::string& path);
// The next step: on the sheet titled `title`, `text` typed into control
// `id` of tab `tab`, then OK.
void TypeOnTabAndOk(DialogDriver* driver, const std::string& title, int tab, int id, const std::string& text);
