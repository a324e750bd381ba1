// One tab of a property sheet bound to a working copy: its controls load
// from the record when the tab is first shown and are read back when the
// sheet closes (after OK and Cancel alike, and only for tabs that were
// shown); showing the tab records its index, OK marks the copy edited, F1
// opens the manual at the tab's topic. A tab's own rules come in as a
// function beside its table.
#pragma once
#include <windows.h>

#include <cstddef>
#include <cstdint>

#include "editors/control_binding.h"

struct Choosers;
struct PageContext;
struct SheetTab;

struct TabBinding {
  const ControlBinding* table;
  size_t count;
  const char* helpTopic;  // the manual's anchor
  // Called for every message after the shared handling of initialisation
  // and before it for the rest; true when it has handled the message.
  bool (*quirks)(HWND page, UINT message, WPARAM wParam, LPARAM lParam, PageContext* context);
};

struct PageContext {
  const TabBinding* tab;
  void* record;        // the sheet's working copy
  int index;           // this tab's place in the sheet
  int32_t* lastPage;   // where showing the tab writes `index` (may be null)
  int32_t* edited;     // what OK sets to 1 (may be null)
  // The page and year sheets' tabs: what the tab shows beyond its table,
  // the tab's own rule applied whenever its state is reset, the choosers
  // its buttons open, and the fonts of its samples (deleted with the tab).
  const SheetTab* sheet = nullptr;
  void (*refresh)(HWND tab, PageContext* context) = nullptr;
  Choosers (*choosers)(HWND tab) = nullptr;
  HFONT samples[2] = {nullptr, nullptr};
};

// The dialog procedure of every bound tab; the PROPSHEETPAGE's lParam is
// its PageContext.
INT_PTR CALLBACK BoundPageProc(HWND page, UINT message, WPARAM wParam, LPARAM lParam);
