// Every dialog and every tab of the program works from the keyboard: Tab
// goes once round every control that takes input (a radio group counts
// once) and Shift+Tab goes the same way back; a radio group's arrows stay
// among its buttons; and Tab leaves a sheet's tab for the sheet's own
// buttons and tab strip.
#include <windows.h>
#include <commctrl.h>
#include <prsht.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "calendar/calendar_model.h"
#include "dialog_driver.h"
#include "editors/page_sheet_win32.h"
#include "editors/setup_sheet_win32.h"
#include "editors/year_sheet_win32.h"
#include "pictures/picture_open_dialog_win32.h"
#include "res/page_sheet_ids.h"
#include "res/picture_dialog_ids.h"
#include "res/year_sheet_ids.h"
#include "test_support.h"

namespace {

std::string ClassOf(HWND window) {
  char name[64] = "";
  GetClassNameA(window, name, sizeof name);
  return name;
}
LONG_PTR StyleOf(HWND window) { return GetWindowLongPtrA(window, GWL_STYLE); }
bool IsDialog(HWND window) { return ClassOf(window) == "#32770"; }
bool IsRadio(HWND window) {
  const LONG_PTR type = StyleOf(window) & BS_TYPEMASK;
  return ClassOf(window) == "Button" && (type == BS_RADIOBUTTON || type == BS_AUTORADIOBUTTON);
}

// A radio button stands for its group: the first button of the group.
HWND GroupOf(HWND radio) {
  while (!(StyleOf(radio) & WS_GROUP) && GetWindow(radio, GW_HWNDPREV)) radio = GetWindow(radio, GW_HWNDPREV);
  return radio;
}

// A control the keyboard should reach: what takes input, not the labels,
// frames, arrows beside edits, or the owner-drawn `decorations` (glyphs and
// previews a click on which only repeats a control beside them).
bool TakesInput(HWND control, const std::set<int>& decorations) {
  const std::string name = ClassOf(control);
  if (name == "Button")
    return (StyleOf(control) & BS_TYPEMASK) != BS_GROUPBOX && !decorations.count(GetDlgCtrlID(control));
  if (name == "Edit" || name == "ComboBox" || name == "ListBox" || name == "SysTabControl32" ||
      name == "SysListView32")
    return true;
  // A window that holds one, as the open dialog's list and name box do.
  for (HWND c = GetWindow(control, GW_CHILD); c; c = GetWindow(c, GW_HWNDNEXT))
    if (IsWindowVisible(c) && TakesInput(c, decorations)) return true;
  return false;
}

// The stops a user should meet in `dialog`: its enabled, visible controls
// that take input, inside the windows the dialog manager goes into (tabs).
void CollectStops(HWND dialog, const std::set<int>& decorations, std::vector<HWND>* stops) {
  for (HWND c = GetWindow(dialog, GW_CHILD); c; c = GetWindow(c, GW_HWNDNEXT)) {
    if (!IsWindowVisible(c) || !IsWindowEnabled(c)) continue;
    if (GetWindowLongPtrA(c, GWL_EXSTYLE) & WS_EX_CONTROLPARENT) {
      CollectStops(c, decorations, stops);
    } else if (TakesInput(c, decorations)) {
      HWND stop = IsRadio(c) ? GroupOf(c) : c;
      if (std::find(stops->begin(), stops->end(), stop) == stops->end()) stops->push_back(stop);
    }
  }
}

// The control that has the focus, as a stop: a combo box's own edit stands
// for the box, a radio button for its group.
HWND FocusedStop() {
  HWND focus = GetFocus();
  while (focus && GetParent(focus) && !IsDialog(GetParent(focus))) focus = GetParent(focus);
  return focus && IsRadio(focus) ? GroupOf(focus) : focus;
}

std::string Describe(HWND control) {
  if (!control) return "(nothing)";
  return ClassOf(control) + " " + std::to_string(GetDlgCtrlID(control)) + " \"" + TextOf(control) + "\"";
}

// Tab, or Shift+Tab, as the message loop of the dialog `top` passes it on:
// through IsDialogMessage, to the control itself when it wants the key.
void PressTab(HWND top, bool back) {
  BYTE keys[256];
  GetKeyboardState(keys);
  keys[VK_SHIFT] = back ? 0x80 : 0;
  SetKeyboardState(keys);
  for (UINT message : {WM_KEYDOWN, WM_KEYUP}) {
    MSG m{GetFocus(), message, VK_TAB, message == WM_KEYDOWN ? 0x000F0001 : 0xC00F0001, 0, {0, 0}};
    do {
      if (!IsDialogMessageA(top, &m)) {
        TranslateMessage(&m);
        DispatchMessageA(&m);
      }
    } while (PeekMessageA(&m, nullptr, WM_KEYFIRST, WM_KEYLAST, PM_REMOVE));
  }
  keys[VK_SHIFT] = 0;
  SetKeyboardState(keys);
}

// The stops met from `first` on until the focus comes back to it.
std::vector<HWND> Round(HWND top, HWND first, bool back) {
  SetFocus(first);
  std::vector<HWND> met{FocusedStop()};
  for (int i = 0; i < 200; ++i) {
    PressTab(top, back);
    if (FocusedStop() == met.front()) return met;
    met.push_back(FocusedStop());
  }
  met.push_back(nullptr);  // never came round
  return met;
}

std::string Describe(const std::vector<HWND>& stops) {
  std::string text;
  for (HWND s : stops) text += "\n  " + Describe(s);
  return text;
}

// The keyboard's rounds of the dialog `top`, which the stops of `top`
// and everything in it must make.
void ExpectKeyboardRounds(HWND top, const std::set<int>& decorations, const std::string& where) {
  SCOPED_TRACE(where);
  std::vector<HWND> stops;
  CollectStops(top, decorations, &stops);
  if (stops.empty()) return;
  std::vector<HWND> ahead = Round(top, stops.front(), false);
  std::vector<HWND> once = ahead;
  std::sort(once.begin(), once.end());
  std::sort(stops.begin(), stops.end());
  EXPECT_TRUE(once == stops) << "Tab met:" << Describe(ahead) << "\nand should meet once each:" << Describe(stops);
  std::vector<HWND> back = Round(top, ahead.front(), true);
  std::reverse(back.begin() + 1, back.end());
  EXPECT_TRUE(back == ahead) << "Shift+Tab goes another way:" << Describe(back);
  // The arrows go round the radio buttons of a group and nothing else.
  for (HWND stop : stops) {
    if (!IsRadio(stop)) continue;
    HWND next = stop;
    for (int i = 0; i < 20 && (next = GetNextDlgGroupItem(GetParent(stop), next, FALSE)) != stop; ++i)
      EXPECT_TRUE(IsRadio(next)) << "the arrows go from " << Describe(stop) << " to " << Describe(next);
  }
}

INT_PTR CALLBACK BareDialog(HWND, UINT message, WPARAM, LPARAM) { return message == WM_INITDIALOG; }

// A template's name, or "#" and its number, as FindResource takes either.
BOOL CALLBACK CollectName(HMODULE, LPCSTR, LPSTR name, LONG_PTR names) {
  reinterpret_cast<std::vector<std::string>*>(names)->push_back(
      IS_INTRESOURCE(name) ? "#" + std::to_string(reinterpret_cast<uintptr_t>(name)) : name);
  return TRUE;
}

// A template, as a child of `host`: a dialog window that is its own would
// make each test wait while the focus goes from window to window. Its
// style comes after a DLGTEMPLATEEX's signature, version, help id and
// extended style, or first in a DLGTEMPLATE.
HWND CreateInside(HWND host, const char* name, DWORD* style) {
  HRSRC found = FindResourceA(nullptr, name, MAKEINTRESOURCEA(5));  // RT_DIALOG
  const auto* bytes = static_cast<const char*>(LockResource(LoadResource(nullptr, found)));
  std::vector<char> copy(bytes, bytes + SizeofResource(nullptr, found));
  char* at = copy.data() + (reinterpret_cast<const WORD*>(bytes)[1] == 0xFFFF ? 12 : 0);
  std::memcpy(style, at, sizeof *style);
  if (*style & WS_CHILD) return nullptr;
  const DWORD inside = (*style & ~WS_POPUP) | WS_CHILD | WS_VISIBLE;
  std::memcpy(at, &inside, sizeof inside);
  return CreateDialogIndirectParamA(GetModuleHandleA(nullptr), reinterpret_cast<DLGTEMPLATE*>(copy.data()), host,
                                    BareDialog, 0);
}

// A sheet (or the picture-open dialog) opened by `run` and titled `title`,
// with its number of tabs (0: not a sheet) and the owner-drawn controls no
// keyboard goes to.
struct KeyboardCase {
  const char* title;
  int tabs;
  std::set<int> decorations;
  std::function<void()> run;
};

}  // namespace

// Every dialog that is a window of its own, made from its template alone.
TEST_F(QuernalTest, TabGoesOnceRoundEveryDialog) {
  INITCOMMONCONTROLSEX classes{sizeof classes, ICC_WIN95_CLASSES};
  InitCommonControlsEx(&classes);
  std::vector<std::string> names;
  EnumResourceNamesA(nullptr, MAKEINTRESOURCEA(5), CollectName, reinterpret_cast<LONG_PTR>(&names));
  HWND host = CreateWindowExA(0, "Static", "", WS_POPUP | WS_VISIBLE, 0, 0, 800, 600, nullptr, nullptr, nullptr,
                              nullptr);
  int dialogs = 0;
  for (const std::string& name : names) {
    DWORD style;
    HWND dialog = CreateInside(host, name.c_str(), &style);
    if (style & WS_CHILD) continue;  // a tab or a part of a dialog: below
    ASSERT_NE(dialog, nullptr) << name;
    ExpectKeyboardRounds(dialog, {}, name);
    DestroyWindow(dialog);
    ++dialogs;
  }
  DestroyWindow(host);
  EXPECT_GE(dialogs, 19) << "the program's dialogs";
}

// Each tab of each sheet in the sheet, and the picture-open dialog with
// the program's part of it.
TEST_F(QuernalTest, TabGoesOnceRoundEverySheetsTabsAndThePictureOpenDialog) {
  MonthPage page{};
  CalendarHeader header{};
  CalendarDocument document = CreateCalendar(2027, 0);
  ASSERT_TRUE(GetMonthPage(document, 0, &page));
  ASSERT_TRUE(GetHeader(document, &header));
  // Pictures shown with their shadows and frames: every control enabled.
  page.Picture = MakePatternDib(40, 30, 24, 1);
  header.CoverPicture = MakePatternDib(40, 30, 24, 2);
  page.PictureShowPicture = page.PictureDropShadow = page.PictureShowFrame = 1;
  header.CoverPictureShowPicture = header.CoverPictureDropShadow = header.CoverPictureShowFrame = 1;
  header.UseCurrentYear = 0;
  char path[MAX_PATH] = "";
  std::strcpy(path, (dir_.path() + "\\").c_str());

  const KeyboardCase cases[] = {
      {"Page", 5,
       {IDC_HEAD_LEFT_GLYPH, IDC_HEAD_CENTRE_GLYPH, IDC_HEAD_RIGHT_GLYPH, IDC_PICTURE_SAMPLE, IDC_CAP_LEFT_GLYPH,
        IDC_CAP_CENTRE_GLYPH, IDC_CAP_RIGHT_GLYPH},
       [&] { EditPageProperties(nullptr, &page); }},
      {"Year", 2,
       {IDC_PICTURE_SAMPLE, IDC_COVER_TITLE_LEFT_GLYPH, IDC_COVER_TITLE_CENTRE_GLYPH, IDC_COVER_TITLE_RIGHT_GLYPH},
       [&] { EditYearProperties(nullptr, &header); }},
      {"Setup", 2, {}, [] { EditSetup(nullptr); }},
      {"Open", 0, {IDC_PICTURE_PREVIEW}, [&] { OpenPictureFile(nullptr, path); }},
  };
  for (const KeyboardCase& c : cases) {
    DialogDriver driver;
    driver.Then(c.title, [&c](HWND top) {
      for (int tab = 0; tab < std::max(c.tabs, 1); ++tab) {
        if (c.tabs) PropSheet_SetCurSel(top, nullptr, tab);
        ExpectKeyboardRounds(top, c.decorations, std::string(c.title) + " tab " + std::to_string(tab));
      }
      Press(top, IDCANCEL);
    });
    c.run();
    EXPECT_TRUE(driver.Finished()) << c.title;
  }
  FreeMonthPage(&page);
  GlobalBlockFree(header.CoverPicture);
  FreeCalendar(document);
}
