// What every tab of the page and year sheets does beyond loading and
// reading back its table: font samples and the font box, colour buttons,
// placement glyphs, and a picture with its preview, "Select..." and
// "Paint".
#pragma once
#include <windows.h>

#include "editors/choosers_win32.h"
#include "editors/property_page_win32.h"

// The tab's messages (its PageContext names its SheetTab); true when
// handled. Initialisation shows the samples and applies the state; after
// the font box and after a click on a picture's check boxes the tab is
// reset (see ResetSheetTab).
bool SheetTabMessage(HWND tab, UINT message, WPARAM wParam, LPARAM lParam, PageContext* context);
// A modal sheet of tabs described as data.
struct SheetPlan {
  HWND owner;
  const char* caption;
  const SheetTab* tabs;
  int count;  // at most 5
  const char* helpTopic;
  bool (*quirks)(HWND tab, UINT message, WPARAM wParam, LPARAM lParam, PageContext* context);
  void (*refresh)(HWND tab, PageContext* context);
  // The choosers the tabs' buttons open, for the tab clicked.
  Choosers (*choosers)(HWND tab) = Win32Choosers;
};
// Runs the sheet over `record` without an Apply button, opening on the tab
// `*lastPage` names (the first when it names none): showing a tab writes
// its index there, OK sets `*edited`.
void RunSheet(const SheetPlan& plan, void* record, int32_t* lastPage, int32_t* edited);
// The controls reset from the record (see ResetTabControls), the samples
// rebuilt and the state applied again; also for a tab's own triggers.
void ResetSheetTab(HWND tab, PageContext* context);
