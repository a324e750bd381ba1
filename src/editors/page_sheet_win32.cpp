#include "editors/page_sheet_win32.h"

#include <commctrl.h>
#include <prsht.h>

#include <cstring>
#include <string>

#include "base/program_win32.h"
#include "base/text.h"
#include "calendar/calendar_model.h"
#include "calendar/event_list.h"
#include "colours/colour_dialog_win32.h"
#include "config/settings.h"
#include "editors/dialog_controls_win32.h"
#include "editors/editor_controls_win32.h"
#include "editors/font_box_win32.h"
#include "editors/page_tabs.h"
#include "editors/picture_tab_win32.h"
#include "editors/property_page_win32.h"
#include "render/primitives_win32.h"
#include "res/page_sheet_ids.h"
#include "res/string_ids.h"

namespace {

constexpr int kSmallestFont = 4, kLargestFont = 100;

MonthPage* Page(PageContext* c) { return static_cast<MonthPage*>(c->record); }
const PageTab& Tab(PageContext* c) { return kPageTabs[c->index]; }
char* Field(PageContext* c, size_t offset) { return static_cast<char*>(c->record) + offset; }
// Record fields are read and written by their bytes: the record is packed.
int32_t Int32At(PageContext* c, size_t offset) {
  int32_t value;
  std::memcpy(&value, Field(c, offset), sizeof value);
  return value;
}
void SetInt32At(PageContext* c, size_t offset, int32_t value) { std::memcpy(Field(c, offset), &value, sizeof value); }

void ShowFontSample(HWND tab, PageContext* c) {
  if (const FontButtonBinding* f = Tab(c).font)
    SetFontSample(tab, f->sample, Field(c, f->face), Int32At(c, f->weight), Int32At(c, f->italic), &c->sample);
}

// After the font box the placement radio is checked again (the others are
// not cleared) and the check boxes go back to the record: clicks made since
// the tab opened are lost, as users of the program have always seen.
void ChooseElementFont(HWND tab, PageContext* c) {
  const FontButtonBinding& f = *Tab(c).font;
  int32_t weight = Int32At(c, f.weight), italic = Int32At(c, f.italic), size = Int32At(c, f.size);
  if (!ChooseFontBox(tab, Field(c, f.face), &weight, &italic, &size, kSmallestFont, kLargestFont)) return;
  SetInt32At(c, f.weight, weight);
  SetInt32At(c, f.italic, italic);
  SetInt32At(c, f.size, size);
  Win32DialogControls controls(tab);
  for (size_t i = 0; i < Tab(c).controlCount; ++i) {
    const ControlBinding& b = Tab(c).controls[i];
    if (b.kind == ControlKind::Radio || b.kind == ControlKind::Check) LoadControls(&b, 1, c->record, controls);
  }
  ShowFontSample(tab, c);
}

const ColourButtonBinding* ColourButton(PageContext* c, int id) {
  for (size_t i = 0; i < Tab(c).colourCount; ++i)
    if (Tab(c).colours[i].button == id) return &Tab(c).colours[i];
  return nullptr;
}

void ChooseElementColour(HWND tab, PageContext* c, const ColourButtonBinding& b) {
  COLORREF colour = static_cast<COLORREF>(Int32At(c, b.colour));
  const COLORREF before = colour;
  if (ChooseColourWithTable(tab, &colour) && colour != before) {
    SetInt32At(c, b.colour, static_cast<int32_t>(colour));
    InvalidateRect(GetDlgItem(tab, b.button), nullptr, TRUE);
  }
}

// The event lists of the program's folder (where the loader finds them), each by its name before the
// first dot; the page's own list selected when it is there.
void FillEventLists(HWND tab, const MonthPage& page) {
  WIN32_FIND_DATAA found;
  const std::string pattern = JoinPath(Settings.ApplicationPath, "*.CDF");
  HANDLE search = FindFirstFileA(pattern.c_str(), &found);
  if (search != INVALID_HANDLE_VALUE) {
    do {
      if (found.cFileName[0] == '.') continue;
      std::string name = found.cFileName;
      name = name.substr(0, name.find('.'));
      SendDlgItemMessageA(tab, IDC_DAYS_LIST, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name.c_str()));
    } while (FindNextFileA(search, &found));
    FindClose(search);
  }
  const LRESULT match =
      SendDlgItemMessageA(tab, IDC_DAYS_LIST, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1),
                          reinterpret_cast<LPARAM>(page.DaysName));
  SendDlgItemMessageA(tab, IDC_DAYS_LIST, CB_SETCURSEL, match == CB_ERR ? static_cast<WPARAM>(-1) : match, 0);
}

// The list chosen becomes the page's, loaded afresh (none when it cannot be).
void ReadEventList(HWND tab, MonthPage* page) {
  char name[261] = "";  // 260 characters at most
  GetDlgItemTextA(tab, IDC_DAYS_LIST, name, sizeof name);
  CopyText(page->DaysName, sizeof page->DaysName, name);
  if (page->Events) GlobalBlockFree(page->Events);
  page->Events = LoadEventList(page->DaysName);
}

void TabOpened(HWND tab, PageContext* c) {
  ShowFontSample(tab, c);
  if (c->index == kEventsTab) FillEventLists(tab, *Page(c));
  if (c->index == kPictureTab) ApplyPictureState(tab, *Page(c));
}

bool Clicked(HWND tab, PageContext* c, int id) {
  const PageTab& t = Tab(c);
  if (t.font && id == t.font->button) return ChooseElementFont(tab, c), true;
  if (const ColourButtonBinding* b = ColourButton(c, id)) return ChooseElementColour(tab, c, *b), true;
  // A click on a placement glyph chooses the placement beside it.
  if (t.firstGlyph && id >= t.firstGlyph && id < t.firstGlyph + 3) {
    CheckRadioButton(tab, t.firstGlyphRadio, t.firstGlyphRadio + 2, t.firstGlyphRadio + id - t.firstGlyph);
    return true;
  }
  return c->index == kPictureTab && PictureTabCommand(tab, id, Page(c));
}

bool DrawItem(PageContext* c, const DRAWITEMSTRUCT* item) {
  const int id = static_cast<int>(item->CtlID);
  const PageTab& t = Tab(c);
  if (const ColourButtonBinding* b = ColourButton(c, id)) {
    DrawColourSwatchButton(item, static_cast<COLORREF>(Int32At(c, b->colour)));
  } else if (t.firstGlyph && id >= t.firstGlyph && id < t.firstGlyph + 3) {
    DrawPlacementGlyph(item, t.firstGlyph);
  } else if (c->index == kPictureTab && id == IDC_PICTURE_SAMPLE) {
    DrawPicturePreview(item, Page(c)->Picture);
  } else {
    return false;
  }
  return true;
}

// What the page tabs do beyond the shared binding of their tables.
bool PageTabQuirks(HWND tab, UINT message, WPARAM wParam, LPARAM lParam, PageContext* c) {
  switch (message) {
    case WM_INITDIALOG: TabOpened(tab, c); return true;
    case WM_COMMAND:
      return HIWORD(wParam) == BN_CLICKED && Clicked(tab, c, LOWORD(wParam));
    case WM_DRAWITEM: return DrawItem(c, reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
    case WM_DESTROY:
      // The shared reading back follows.
      if (c->index == kEventsTab) ReadEventList(tab, Page(c));
      if (c->sample) DeleteObject(c->sample);
      c->sample = nullptr;
      return false;
  }
  return false;
}

}  // namespace

bool EditPageProperties(HWND owner, MonthPage* page) {
  MonthPage copy;
  if (!CopyMonthPage(&copy, page)) {
    ShowMessage(owner, IDS_MEMORY_FAILED);
    return false;
  }
  copy.Edited = 0;
  TabBinding bindings[kPageTabCount];
  PageContext contexts[kPageTabCount];
  PROPSHEETPAGEA tabs[kPageTabCount]{};
  for (int i = 0; i < kPageTabCount; ++i) {
    bindings[i] = {kPageTabs[i].controls, kPageTabs[i].controlCount, "Month", PageTabQuirks};
    contexts[i] = {&bindings[i], &copy, i, &copy.LastPropertyPage, &copy.Edited};
    tabs[i].dwSize = sizeof tabs[i];
    tabs[i].dwFlags = PSP_USETITLE;
    tabs[i].hInstance = GetModuleHandleA(nullptr);
    tabs[i].pszTemplate = kPageTabs[i].templateName;
    tabs[i].pszTitle = kPageTabs[i].caption;
    tabs[i].pfnDlgProc = BoundPageProc;
    tabs[i].lParam = reinterpret_cast<LPARAM>(&contexts[i]);
  }
  PROPSHEETHEADERA sheet{};
  sheet.dwSize = sizeof sheet;
  sheet.dwFlags = PSH_PROPSHEETPAGE | PSH_NOAPPLYNOW;
  sheet.hwndParent = owner;
  sheet.hInstance = GetModuleHandleA(nullptr);
  sheet.pszCaption = "Page";
  sheet.nPages = kPageTabCount;
  // A damaged file may hold any number here.
  const int32_t start = page->LastPropertyPage;
  sheet.nStartPage = start >= 0 && start < kPageTabCount ? static_cast<UINT>(start) : 0;
  sheet.ppsp = tabs;
  PropertySheetA(&sheet);
  if (!copy.Edited) {
    FreeMonthPage(&copy);
    return false;
  }
  // The copy-back is not checked and the working copy's blocks are not
  // freed: both kept on purpose.
  FreeMonthPage(page);
  CopyMonthPage(page, &copy);
  return true;
}
