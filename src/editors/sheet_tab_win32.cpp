#include "editors/sheet_tab_win32.h"

#include <commctrl.h>
#include <prsht.h>

#include <cstring>

#include "base/program_win32.h"
#include "editors/choosers.h"
#include "editors/dialog_controls_win32.h"
#include "editors/editor_controls_win32.h"
#include "editors/picture_tab_win32.h"
#include "editors/sheet_tab.h"
#include "render/primitives_win32.h"

namespace {

char* Field(PageContext* c, size_t offset) { return static_cast<char*>(c->record) + offset; }
// Record fields are read and written by their bytes: the records are packed.
int32_t Int32At(PageContext* c, size_t offset) {
  int32_t value;
  std::memcpy(&value, Field(c, offset), sizeof value);
  return value;
}

void ShowSamples(HWND tab, PageContext* c) {
  for (size_t i = 0; i < c->sheet->fontCount && i < 2; ++i) {
    const FontButtonBinding& f = c->sheet->fonts[i];
    SetFontSample(tab, f.sample, Field(c, f.face), Int32At(c, f.weight), Int32At(c, f.italic), &c->samples[i]);
  }
}

bool IsGlyph(const SheetTab& t, int id) { return t.firstGlyph && id >= t.firstGlyph && id < t.firstGlyph + 3; }

const ColourButtonBinding* ColourButton(const SheetTab& t, int id) {
  for (size_t i = 0; i < t.colourCount; ++i)
    if (t.colours[i].button == id) return &t.colours[i];
  return nullptr;
}

// The samples rebuilt, the picture repainted and the tab's own rule applied
// once its controls were reset.
void RedrawReset(HWND tab, PageContext* c) {
  ShowSamples(tab, c);
  if (c->sheet->picture) RepaintPicture(tab, c->record, *c->sheet);
  if (c->refresh) c->refresh(tab, c);
}

// The button's chooser and what the tab does with its answer, then what
// that leaves to the window.
bool Clicked(HWND tab, PageContext* c, int id) {
  Win32DialogControls controls(tab);
  const TabClick click = ClickTabButton(*c->sheet, id, c->record, controls, c->choosers(tab));
  if (click.message) ShowMessage(tab, click.message);
  switch (click.then) {
    case TabClick::kNotMine: return c->sheet->picture && PictureTabCommand(tab, id, c->record, *c->sheet);
    case TabClick::kDone: break;
    case TabClick::kRepaintButton: InvalidateRect(GetDlgItem(tab, id), nullptr, TRUE); break;
    case TabClick::kReset: RedrawReset(tab, c); break;
    case TabClick::kNewPicture: RepaintPicture(tab, c->record, *c->sheet); break;
  }
  return true;
}

bool DrawItem(PageContext* c, const DRAWITEMSTRUCT* item) {
  const int id = static_cast<int>(item->CtlID);
  const SheetTab& t = *c->sheet;
  if (const ColourButtonBinding* b = ColourButton(t, id)) {
    DrawColourSwatchButton(item, static_cast<COLORREF>(Int32At(c, b->colour)));
  } else if (IsGlyph(t, id)) {
    DrawPlacementGlyph(item, t.firstGlyph);
  } else if (t.picture && id == IDC_PICTURE_PRINT) {
    DrawPrintNote(item);
  } else if (t.picture && id == IDC_PICTURE_SAMPLE) {
    DrawPicturePreview(item, *reinterpret_cast<const BlockHandle*>(Field(c, t.picture->picture)));
  } else {
    return false;
  }
  return true;
}

}  // namespace

void ResetSheetTab(HWND tab, PageContext* c) {
  Win32DialogControls controls(tab);
  ResetTabControls(*c->sheet, c->record, controls);
  RedrawReset(tab, c);
}

bool SheetTabMessage(HWND tab, UINT message, WPARAM wParam, LPARAM lParam, PageContext* c) {
  switch (message) {
    case WM_INITDIALOG:
      ShowSamples(tab, c);
      if (c->sheet->picture) ApplyPictureState(tab, c->record, *c->sheet);
      if (c->refresh) c->refresh(tab, c);
      return true;
    case WM_COMMAND:
      // The box, and so the resolution, follows the paddings as they are typed.
      if (HIWORD(wParam) == EN_CHANGE && c->sheet->picture && MovesPictureBox(LOWORD(wParam)))
        ShowPrintNote(tab, c->record, *c->sheet);
      return HIWORD(wParam) == BN_CLICKED && Clicked(tab, c, LOWORD(wParam));
    case WM_DRAWITEM: return DrawItem(c, reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
    case WM_DESTROY:
      for (HFONT& font : c->samples) {
        if (font) DeleteObject(font);
        font = nullptr;
      }
      return false;  // the shared reading back follows
  }
  return false;
}

void RunSheet(const SheetPlan& plan, void* record, int32_t* lastPage, int32_t* edited) {
  constexpr int kMostTabs = 5;
  TabBinding bindings[kMostTabs];
  PageContext contexts[kMostTabs];
  PROPSHEETPAGEA tabs[kMostTabs]{};
  const int count = plan.count < kMostTabs ? plan.count : kMostTabs;
  for (int i = 0; i < count; ++i) {
    const SheetTab& t = plan.tabs[i];
    bindings[i] = {t.controls, t.controlCount, plan.helpTopic, plan.quirks};
    contexts[i] = {&bindings[i], record, i, lastPage, edited, &t, plan.refresh, plan.choosers};
    tabs[i].dwSize = sizeof tabs[i];
    tabs[i].dwFlags = PSP_USETITLE;
    tabs[i].hInstance = GetModuleHandleA(nullptr);
    tabs[i].pszTemplate = t.templateName;
    tabs[i].pszTitle = t.caption;
    tabs[i].pfnDlgProc = BoundPageProc;
    tabs[i].lParam = reinterpret_cast<LPARAM>(&contexts[i]);
  }
  PROPSHEETHEADERA sheet{};
  sheet.dwSize = sizeof sheet;
  sheet.dwFlags = PSH_PROPSHEETPAGE | PSH_NOAPPLYNOW;
  sheet.hwndParent = plan.owner;
  sheet.hInstance = GetModuleHandleA(nullptr);
  sheet.pszCaption = plan.caption;
  sheet.nPages = static_cast<UINT>(count);
  // A damaged file may hold any number here.
  sheet.nStartPage = *lastPage >= 0 && *lastPage < count ? static_cast<UINT>(*lastPage) : 0;
  sheet.ppsp = tabs;
  PropertySheetA(&sheet);
}
