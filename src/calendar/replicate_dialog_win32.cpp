#include "calendar/replicate_dialog_win32.h"

#include <string>

#include "res/calendar_dialog_ids.h"
#include "base/manual_win32.h"
#include "base/program_win32.h"
#include "calendar/calendar_dates.h"
#include "calendar/replicate.h"

namespace {

struct ReplicateState {
  CalendarDocument document;
  int current;  // the month being shown: the source, never a target
};

HWND MonthBox(HWND dialog, int month) { return GetDlgItem(dialog, IDC_REPLICATE_JANUARY + month); }

bool IsTarget(HWND dialog, int month) {
  const HWND box = MonthBox(dialog, month);
  return IsWindowEnabled(box) && SendMessageA(box, BM_GETCHECK, 0, 0) == BST_CHECKED;
}

// OK is enabled exactly while a month is ticked; the focus follows it, so
// Enter does what the dialog can do.
void ApplyOkRule(HWND dialog) {
  bool any = false;
  for (int month = 0; month < 12; ++month)
    any = any || SendMessageA(MonthBox(dialog, month), BM_GETCHECK, 0, 0) == BST_CHECKED;
  const HWND ok = GetDlgItem(dialog, IDOK);
  EnableWindow(ok, any);
  const HWND focus = any ? ok : GetDlgItem(dialog, IDCANCEL);
  SendMessageA(dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(focus), TRUE);
}

// The disabled box of the current month is left as it is.
void CheckEveryEnabledMonth(HWND dialog, UINT state) {
  for (int month = 0; month < 12; ++month)
    if (IsWindowEnabled(MonthBox(dialog, month))) SendMessageA(MonthBox(dialog, month), BM_SETCHECK, state, 0);
  ApplyOkRule(dialog);
}

// The caption's own text is the pattern; "%s" becomes the month's name.
void FillCaption(HWND dialog, int month) {
  char pattern[256] = "";
  GetDlgItemTextA(dialog, IDC_REPLICATE_CAPTION, pattern, sizeof pattern);
  std::string text = pattern;
  const size_t at = text.find("%s");
  if (at != std::string::npos) text.replace(at, 2, MonthName(month));
  SetDlgItemTextA(dialog, IDC_REPLICATE_CAPTION, text.c_str());
}

bool Start(HWND dialog, ReplicateState* state) {
  CalendarHeader header;
  if (!GetHeader(state->document, &header) || header.CurrentPage < 0 || header.CurrentPage > 11) return false;
  state->current = header.CurrentPage;
  EnableWindow(MonthBox(dialog, state->current), FALSE);
  FillCaption(dialog, state->current);
  ApplyOkRule(dialog);
  return true;
}

void Replicate(HWND dialog, const ReplicateState* state) {
  bool targets[12];
  for (int month = 0; month < 12; ++month) targets[month] = IsTarget(dialog, month);
  if (ReplicateMonth(state->document, state->current, targets)) return (void)EndDialog(dialog, 1);
  ShowMessage(dialog, IDS_PAGE_ACCESS_FAILED);
  EndDialog(dialog, 0);
}

INT_PTR CALLBACK ReplicateProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  auto* state = reinterpret_cast<ReplicateState*>(GetWindowLongPtrA(dialog, DWLP_USER));
  switch (message) {
    case WM_INITDIALOG:
      SetWindowLongPtrA(dialog, DWLP_USER, lParam);
      if (!Start(dialog, reinterpret_cast<ReplicateState*>(lParam))) {
        ShowMessage(dialog, IDS_PAGE_ACCESS_FAILED);
        EndDialog(dialog, 0);
      }
      return FALSE;  // the focus is set already
    case WM_COMMAND: {
      const int id = LOWORD(wParam);
      if (id >= IDC_REPLICATE_JANUARY && id < IDC_REPLICATE_JANUARY + 12) ApplyOkRule(dialog);
      else if (id == IDC_REPLICATE_ALL) CheckEveryEnabledMonth(dialog, BST_CHECKED);
      else if (id == IDC_REPLICATE_NONE) CheckEveryEnabledMonth(dialog, BST_UNCHECKED);
      else if (id == IDOK) Replicate(dialog, state);
      else if (id == IDCANCEL) EndDialog(dialog, 0);
      else if (id == IDHELP) OpenManual(dialog, "REPLICATE");
      return TRUE;
    }
    default: return FALSE;
  }
}

}  // namespace

int ReplicateMonth(HWND owner, CalendarDocument document) {
  ReplicateState state{document, 0};
  const INT_PTR result = DialogBoxParamA(GetModuleHandleA(nullptr), "REPLICATEBOX", owner, ReplicateProc,
                                         reinterpret_cast<LPARAM>(&state));
  return result == 1 ? 1 : 0;
}
