// Shows Quernal's windows one by one for the pictures of the manual
// (tools/manual-screenshots.sh). Quernal.exe beside this program opens
// CALENDAR; then each window in turn is opened as the menu opens it, and
// once it has painted this program prints
//   shot NAME LEFT TOP WIDTH HEIGHT
// (the window's place on the screen) and waits for a line on its input, the
// picture taken, before it closes the window and goes on. Lines starting
// with "note" say what went wrong; the exit code is the number of windows
// that did not come.
//   quernal_manual_shots.exe CALENDAR [PICTURE]
// PICTURE is a picture with a palette, chosen on the Picture tab so that the
// palette warning shows.
#include <windows.h>
#include <commctrl.h>
#include <prsht.h>

#include <cstdio>
#include <string>
#include <vector>

#include "e2e/e2e_support.h"
#include "res/calendar_dialog_ids.h"
#include "res/main_ids.h"
#include "res/page_sheet_ids.h"
#include "res/print_dialog_ids.h"

namespace {

int missing = 0;

void Note(const std::string& what) {
  std::printf("note %s\n", what.c_str());
  std::fflush(stdout);
}

// Prints the window's place and waits until the script has taken it.
void Shot(const char* name, HWND window) {
  if (!window) {
    Note(std::string(name) + ": the window did not come");
    ++missing;
    return;
  }
  SetForegroundWindow(window);
  RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_ALLCHILDREN | RDW_UPDATENOW);
  Sleep(700);
  RECT r;
  GetWindowRect(window, &r);
  std::printf("shot %s %ld %ld %ld %ld\n", name, r.left, r.top, r.right - r.left, r.bottom - r.top);
  std::fflush(stdout);
  char line[64];
  if (!std::fgets(line, sizeof line, stdin)) Sleep(1000);  // nobody answers: a moment to look
}

void Close(HWND dialog, int button = IDCANCEL) {
  if (!dialog) return;
  Press(dialog, button);
  WaitGone(dialog);
}

void ShowTab(HWND sheet, int index) {
  SendMessageA(sheet, PSM_SETCURSEL, index, 0);
  Sleep(300);
}

// Selects the first file of the open dialog's list, as a click would, so
// that the preview shows it.
void SelectFirstFile(HWND dialog) {
  HWND view = FindWindowExA(dialog, nullptr, "SHELLDLL_DefView", nullptr);
  HWND list = view ? FindWindowExA(view, nullptr, "SysListView32", nullptr) : nullptr;
  if (!list) return Note("picture-open: no file list");
  PostMessageA(list, WM_KEYDOWN, VK_HOME, 0);
  PostMessageA(list, WM_KEYUP, VK_HOME, 0xC0000001);
  Sleep(1500);
}

void PageSheet(const Quernal& quernal, const char* picture) {
  quernal.Command(IDM_EDIT_MONTH);
  HWND sheet = quernal.Wait("Page");
  if (!sheet) return Shot("page-heading", nullptr);
  const char* tabs[] = {"page-heading", "page-dates", "page-events", "page-picture", "page-caption"};
  for (int i = 0; i < 5; ++i) {
    ShowTab(sheet, i);
    Shot(tabs[i], sheet);
  }

  ShowTab(sheet, 0);
  Press(CurrentTab(sheet), IDC_HEAD_FONT);
  HWND font = quernal.Wait("Font");
  Shot("font", font);
  Close(font);
  Press(CurrentTab(sheet), IDC_HEAD_COLOUR);
  HWND colour = quernal.Wait("Color");
  Shot("colour", colour);
  Close(colour);

  ShowTab(sheet, 3);
  Press(CurrentTab(sheet), IDC_PICTURE_CROP);
  HWND crop = quernal.Wait("Crop Picture");
  if (crop) {
    // The frame made smaller with Shift and the left arrow, as a user does,
    // so that the part cropped away shows.
    SetForegroundWindow(crop);
    std::vector<INPUT> keys;
    const auto key = [&](WORD vk, bool up) {
      INPUT in{};
      in.type = INPUT_KEYBOARD;
      in.ki.wVk = vk;
      in.ki.dwFlags = up ? KEYEVENTF_KEYUP : 0;
      keys.push_back(in);
    };
    key(VK_SHIFT, false);
    for (int i = 0; i < 8; ++i) key(VK_LEFT, false), key(VK_LEFT, true);
    key(VK_SHIFT, true);
    key(VK_DOWN, false), key(VK_DOWN, true);
    SendInput(static_cast<UINT>(keys.size()), keys.data(), sizeof(INPUT));
    Sleep(500);
  }
  Shot("crop", crop);
  Close(crop);
  Press(CurrentTab(sheet), IDC_PICTURE_SELECT);
  HWND open = quernal.Wait("Open");
  if (open) SelectFirstFile(open);
  Shot("picture-open", open);
  if (open && picture) {
    ChooseFile(open, picture);
    HWND warning = quernal.Wait("Message", 15000);
    Shot("palette-warning", warning);
    Close(warning, IDOK);
  } else {
    Close(open);
  }
  // Cancel: the sample stays as it was, the picture chosen above included.
  Close(sheet);
}

void TwoTabs(const Quernal& quernal, int command, const char* title, const char* first, const char* second) {
  quernal.Command(command);
  HWND sheet = quernal.Wait(title);
  if (!sheet) return Shot(first, nullptr);
  ShowTab(sheet, 0);
  Shot(first, sheet);
  ShowTab(sheet, 1);
  Shot(second, sheet);
  Close(sheet);
}

void Events(const Quernal& quernal) {
  quernal.Command(IDM_EVENTS);
  HWND events = quernal.Wait("Edit [ General ]");  // the sample's pages show the list General
  Shot("events", events);
  if (!events) return;
  Press(events, IDC_EVENT_NEW);
  HWND added = quernal.Wait("New");
  Shot("event-new", added);
  Close(added);
  Close(events);
}

void Replicate(const Quernal& quernal) {
  quernal.Command(IDM_REPLICATE);
  HWND replicate = quernal.Wait("Replicate");
  if (replicate) {
    for (int id : {107, 108, 109}) SetCheck(replicate, id, true);  // July to September
    Sleep(300);
  }
  Shot("replicate", replicate);
  Close(replicate);
}

// Double-sided printing up to the question between the two passes.
void PrintDoubleSided(const Quernal& quernal) {
  quernal.Command(IDM_PRINT_DOUBLE);
  HWND print = quernal.Wait("Print");
  Shot("print", print);
  if (!print) return;
  Close(print, IDOK);
  HWND turn = quernal.Wait("Printing...", 120000);
  Shot("turn-over", turn);
  Close(turn);  // Abort: the second sides are not printed
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: quernal_manual_shots CALENDAR [PICTURE]\n");
    return 2;
  }
  const std::string calendar = argv[1];
  Quernal quernal(calendar);
  HWND window = quernal.MainWindow();
  if (!window) {
    Note("Quernal did not start");
    return 100;
  }
  const std::string name = calendar.substr(calendar.find_last_of('\\') + 1);
  if (quernal.TitleStartingWith("Quernal [ " + name).rfind("Quernal [ " + name, 0) != 0) Note("the calendar did not open");
  SetForegroundWindow(window);

  quernal.Command(IDM_PAGE_JANUARY + 5);  // June
  Sleep(1000);
  Shot("main-window", window);
  PageSheet(quernal, argc > 2 ? argv[2] : nullptr);
  TwoTabs(quernal, IDM_EDIT_YEAR, "Year", "year-year", "year-cover");
  TwoTabs(quernal, IDM_SETUP, "Setup", "setup-application", "setup-titles");
  Events(quernal);
  Replicate(quernal);
  PrintDoubleSided(quernal);

  quernal.Settle();
  PostMessageA(window, WM_SYSCOMMAND, SC_CLOSE, 0);
  // Nothing was changed, but should the question come, nothing is saved.
  if (HWND ask = quernal.Wait("Message", 3000)) Close(ask, IDNO);
  quernal.Ended();
  return missing;
}
