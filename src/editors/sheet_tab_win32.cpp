#include "editors/sheet_tab_win32.h"

#include <commctrl.h>
#include <prsht.h>

#include <cstring>

#include "colours/colour_dialog_win32.h"
#include "editors/dialog_controls_win32.h"
#include "editors/editor_controls_win32.h"
#include "editors/font_box_win32.h"
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
void SetInt32At(PageContext* c, size_t offset, int32_t value) { std::memcpy(Field(c, offset), &value, sizeof value); }

void ShowSamples(HWND tab, PageContext* c) {
  for (size_t i = 0; i < c->sheet->fontCount && i < 2; ++i) {
    const FontButtonBinding& f = c->sheet->fonts[i];
    SetFontSample(tab, f.sample, Field(c, f.face), Int32At(c, f.weight), Int32At(c, f.italic), &c->samples[i]);
  }
}

void ChooseElementFont(HWND tab, PageContext* c, const FontButtonBinding& f) {
  int32_t weight = Int32At(c, f.weight), italic = Int32At(c, f.italic);
  int32_t size = f.size == kNoField ? 0 : Int32At(c, f.size);
  if (!ChooseFontBox(tab, Field(c, f.face), &weight, &italic, f.size == kNoField ? nullptr : &size, f.minimum,
                     f.maximum))
    return;
  SetInt32At(c, f.weight, weight);
  SetInt32At(c, f.italic, italic);
  if (f.size != kNoField) SetInt32At(c, f.size, size);
  ResetSheetTab(tab, c);
}

void ChooseElementColour(HWND tab, PageContext* c, const ColourButtonBinding& b) {
  COLORREF colour = static_cast<COLORREF>(Int32At(c, b.colour));
  const COLORREF before = colour;
  if (ChooseColourWithTable(tab, &colour) && colour != before) {
    SetInt32At(c, b.colour, static_cast<int32_t>(colour));
    InvalidateRect(GetDlgItem(tab, b.button), nullptr, TRUE);
  }
}

bool IsGlyph(const SheetTab& t, int id) { return t.firstGlyph && id >= t.firstGlyph && id < t.firstGlyph + 3; }

const ColourButtonBinding* ColourButton(const SheetTab& t, int id) {
  for (size_t i = 0; i < t.colourCount; ++i)
    if (t.colours[i].button == id) return &t.colours[i];
  return nullptr;
}

bool Clicked(HWND tab, PageContext* c, int id) {
  const SheetTab& t = *c->sheet;
  for (size_t i = 0; i < t.fontCount; ++i)
    if (id == t.fonts[i].button) return ChooseElementFont(tab, c, t.fonts[i]), true;
  if (const ColourButtonBinding* b = ColourButton(t, id)) return ChooseElementColour(tab, c, *b), true;
  // A click on a placement glyph chooses the placement beside it.
  if (IsGlyph(t, id)) {
    CheckRadioButton(tab, t.firstGlyphRadio, t.firstGlyphRadio + 2, t.firstGlyphRadio + id - t.firstGlyph);
    return true;
  }
  if (!t.picture) return false;
  if (IsPictureCheckBox(id)) return ResetSheetTab(tab, c), true;
  return PictureTabCommand(tab, id, c->record, t);
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
  const SheetTab& t = *c->sheet;
  Win32DialogControls controls(tab);
  for (size_t i = 0; i < t.controlCount; ++i) {
    const ControlBinding& b = t.controls[i];
    if (b.kind == ControlKind::Radio || b.kind == ControlKind::Check) LoadControls(&b, 1, c->record, controls);
  }
  ShowSamples(tab, c);
  if (t.picture) ApplyPictureState(tab, c->record, t);
  if (c->refresh) c->refresh(tab, c);
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
    contexts[i] = {&bindings[i], record, i, lastPage, edited, &t, plan.refresh};
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
