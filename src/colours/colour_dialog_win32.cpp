#include "colours/colour_dialog_win32.h"

#include <colordlg.h>
#include <commctrl.h>
#include <commdlg.h>

#include <cstdio>
#include <string>
#include <vector>

#include "base/manual_win32.h"
#include "base/program_win32.h"
#include "base/text.h"
#include "colours/colour_table.h"
#include "config/plain_name.h"
#include "config/settings.h"
#include "editors/editor_controls_win32.h"
#include "res/colour_dialog_ids.h"

namespace {

constexpr UINT kFinishLayout = WM_USER + 25, kSelectCurrent = WM_USER + 26;
constexpr int kRgbEdits[3] = {COLOR_RED, COLOR_GREEN, COLOR_BLUE};

HWND List(HWND dialog) { return GetDlgItem(dialog, IDC_COLOUR_LIST); }

COLORREF EditedColour(HWND dialog) {
  return RGB(GetDlgItemInt(dialog, COLOR_RED, nullptr, FALSE) & 0xFF,
             GetDlgItemInt(dialog, COLOR_GREEN, nullptr, FALSE) & 0xFF,
             GetDlgItemInt(dialog, COLOR_BLUE, nullptr, FALSE) & 0xFF);
}

std::string ItemName(HWND list, int index) {
  const LRESULT length = SendMessageA(list, LB_GETTEXTLEN, index, 0);
  if (length < 0) return "";
  std::string name(static_cast<size_t>(length) + 1, '\0');
  SendMessageA(list, LB_GETTEXT, index, reinterpret_cast<LPARAM>(&name[0]));
  name.resize(static_cast<size_t>(length));
  return name;
}

int FindColour(HWND list, COLORREF colour) {
  const int count = static_cast<int>(SendMessageA(list, LB_GETCOUNT, 0, 0));
  for (int i = 0; i < count; ++i)
    if (static_cast<COLORREF>(SendMessageA(list, LB_GETITEMDATA, i, 0)) == colour) return i;
  return -1;
}

// The red, green and blue edits show their value in hexadecimal beside
// them, whenever their text is set.
LRESULT CALLBACK HexEditProc(HWND edit, UINT message, WPARAM wParam, LPARAM lParam) {
  const auto previous = reinterpret_cast<WNDPROC>(GetPropA(edit, "QuernalEditProc"));
  const LRESULT result = CallWindowProcA(previous, edit, message, wParam, lParam);
  if (message == WM_SETTEXT) {
    char hex[8];
    std::snprintf(hex, sizeof hex, "%.2XH", GetDlgItemInt(GetParent(edit), GetDlgCtrlID(edit), nullptr, FALSE) & 0xFFu);
    SetDlgItemTextA(GetParent(edit), GetDlgCtrlID(edit) + IDC_COLOUR_HEX_OFFSET, hex);
  }
  if (message == WM_NCDESTROY) {
    SetWindowLongPtrA(edit, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(previous));
    RemovePropA(edit, "QuernalEditProc");
  }
  return result;
}

void FinishLayout(HWND dialog) {
  HFONT font = reinterpret_cast<HFONT>(SendMessageA(dialog, WM_GETFONT, 0, 0));
  int widest = 0;
  for (int id : kRgbEdits) {
    HWND edit = GetDlgItem(dialog, id);
    HWND arrows = GetDlgItem(dialog, id - COLOR_RED + IDC_COLOUR_RED_ARROWS);
    RECT r;
    GetWindowRect(arrows ? arrows : edit, &r);
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&r), 2);
    const int width = MulDiv(28, LOWORD(GetDialogBaseUnits()), 4);
    HWND label = CreateWindowExA(0, "STATIC", "", WS_CHILD | WS_VISIBLE | SS_LEFT | SS_NOPREFIX, r.right + 2, r.top + 2,
                                 width, r.bottom - r.top, dialog,
                                 reinterpret_cast<HMENU>(static_cast<INT_PTR>(id + IDC_COLOUR_HEX_OFFSET)),
                                 GetModuleHandleA(nullptr), nullptr);
    SendMessageA(label, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    widest = width > widest ? width : widest;
    SetPropA(edit, "QuernalEditProc",
             reinterpret_cast<HANDLE>(SetWindowLongPtrA(edit, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(HexEditProc))));
    char text[16];
    GetWindowTextA(edit, text, sizeof text);
    SetWindowTextA(edit, text);
  }
  RECT frame;
  GetWindowRect(dialog, &frame);
  SetWindowPos(dialog, nullptr, 0, 0, frame.right - frame.left + widest + 2, frame.bottom - frame.top,
               SWP_NOMOVE | SWP_NOZORDER);
}

void SelectCurrent(HWND dialog) {
  HWND list = List(dialog);
  SendMessageA(list, LB_SETCURSEL, FindColour(list, EditedColour(dialog)), 0);
  if (SendMessageA(list, LB_GETCURSEL, 0, 0) < 0) SendMessageA(list, LB_SETCURSEL, 0, 0);
}

void ShowItem(HWND dialog) {
  const LRESULT at = SendMessageA(List(dialog), LB_GETCURSEL, 0, 0);
  if (at < 0) return;
  const COLORREF c = static_cast<COLORREF>(SendMessageA(List(dialog), LB_GETITEMDATA, at, 0));
  const int values[3] = {GetRValue(c), GetGValue(c), GetBValue(c)};
  for (int i = 0; i < 3; ++i) SetDlgItemInt(dialog, kRgbEdits[i], values[i], FALSE);
}

bool Ask(HWND dialog, const std::string& question) {
  return MessageBoxA(dialog, question.c_str(), "Message", MB_YESNO | MB_ICONQUESTION) == IDYES;
}

void AddColour(HWND dialog) {
  const COLORREF colour = EditedColour(dialog);
  const int existing = FindColour(List(dialog), colour);
  if (existing >= 0) {
    const std::string format = StringTableText(IDS_COLOUR_EXISTS), name = ItemName(List(dialog), existing);
    std::vector<char> question(format.size() + name.size() + 1);
    std::snprintf(question.data(), question.size(), format.c_str(), name.c_str());
    if (!Ask(dialog, question.data())) return;
  }
  if (!AddColourDialog(dialog, colour, IDC_COLOUR_LIST)) return;
  SaveColourTable(dialog, ColourTablePath().c_str(), IDC_COLOUR_LIST);
  PostMessageA(dialog, kSelectCurrent, 0, 0);
}

void DeleteColour(HWND dialog) {
  HWND list = List(dialog);
  const int at = static_cast<int>(SendMessageA(list, LB_GETCURSEL, 0, 0));
  if (at < 0 || !Ask(dialog, StringTableText(IDS_COLOUR_DELETE))) return;
  SendMessageA(list, LB_DELETESTRING, at, 0);
  SaveColourTable(dialog, ColourTablePath().c_str(), IDC_COLOUR_LIST);
  SendMessageA(list, LB_SETCURSEL, at > 0 ? at - 1 : 0, 0);
}

void OpenTable(HWND dialog) {
  char name[261];
  CopyText(name, sizeof name, Settings.ColourTableFile);
  if (!OpenColourTableDialog(dialog, name)) return;
  CopyText(Settings.ColourTableFile, sizeof Settings.ColourTableFile, name);
  LoadColourTable(dialog, ColourTablePath().c_str(), IDC_COLOUR_LIST);
  InvalidateRect(List(dialog), nullptr, TRUE);
  PostMessageA(dialog, kSelectCurrent, 0, 0);
}

void FillRectWith(HDC dc, const RECT& r, COLORREF colour) {
  HBRUSH brush = CreateSolidBrush(colour);
  FillRect(dc, &r, brush);
  DeleteObject(brush);
}

// A table entry: its swatch and its name; the selected one on a shadow.
void DrawEntry(const DRAWITEMSTRUCT& item) {
  if (item.itemID == static_cast<UINT>(-1)) return;
  FillRectWith(item.hDC, item.rcItem, GetSysColor((item.itemState & ODS_SELECTED) ? COLOR_BTNSHADOW : COLOR_WINDOW));
  const std::string name = ItemName(item.hwndItem, static_cast<int>(item.itemID));
  SetBkMode(item.hDC, TRANSPARENT);
  SetTextColor(item.hDC, GetSysColor(COLOR_WINDOWTEXT));
  TextOutA(item.hDC, item.rcItem.left + 30, item.rcItem.top + 1, name.c_str(), static_cast<int>(name.size()));
  FillRectWith(item.hDC, {item.rcItem.left + 4, item.rcItem.top + 2, item.rcItem.left + 24, item.rcItem.bottom - 2},
               static_cast<COLORREF>(item.itemData));
}

// The preview: the colour the three arrows stand at.
void DrawPreview(HWND dialog, const DRAWITEMSTRUCT& item) {
  int values[3];
  for (int i = 0; i < 3; ++i)
    values[i] = LOWORD(SendDlgItemMessageA(dialog, IDC_COLOUR_RED_ARROWS + i, UDM_GETPOS, 0, 0)) & 0xFF;
  FillRectWith(item.hDC, item.rcItem, RGB(values[0], values[1], values[2]));
}

UINT_PTR CALLBACK ColourHook(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG: {
      const struct {
        int id, minimum, maximum;
      } ranges[] = {{IDC_COLOUR_RED_ARROWS, 0, 255}, {IDC_COLOUR_GREEN_ARROWS, 0, 255}, {IDC_COLOUR_BLUE_ARROWS, 0, 255},
                    {IDC_COLOUR_HUE_ARROWS, 0, 239}, {IDC_COLOUR_SAT_ARROWS, 0, 240}, {IDC_COLOUR_LUM_ARROWS, 0, 240}};
      for (const auto& r : ranges) SendDlgItemMessageA(dialog, r.id, UDM_SETRANGE, 0, MAKELPARAM(r.maximum, r.minimum));
      PostMessageA(dialog, kFinishLayout, 0, 0);
      LoadColourTable(dialog, ColourTablePath().c_str(), IDC_COLOUR_LIST);
      PostMessageA(dialog, kSelectCurrent, 0, 0);
      return TRUE;
    }
    case kFinishLayout: FinishLayout(dialog); return TRUE;
    case kSelectCurrent: SelectCurrent(dialog); return TRUE;
    case WM_LBUTTONUP: SendMessageA(dialog, WM_COMMAND, COLOR_RED, 0); return FALSE;
    case WM_DRAWITEM: {
      const auto& item = *reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
      if (item.CtlID == IDC_COLOUR_LIST) return DrawEntry(item), TRUE;
      if (item.CtlID == IDC_COLOUR_PREVIEW) return DrawPreview(dialog, item), TRUE;
      return FALSE;
    }
    case WM_COMMAND:
      switch (LOWORD(wParam)) {
        case IDC_COLOUR_LIST:
          if (HIWORD(wParam) == LBN_SELCHANGE) ShowItem(dialog);
          if (HIWORD(wParam) == LBN_DBLCLK) PostMessageA(dialog, WM_COMMAND, IDOK, 0);
          return TRUE;
        case IDC_COLOUR_ADD: AddColour(dialog); return TRUE;
        case IDC_COLOUR_DELETE: DeleteColour(dialog); return TRUE;
        case IDC_COLOUR_OPEN: OpenTable(dialog); return TRUE;
        case IDHELP: OpenManual(dialog, "COLORS"); return TRUE;
        case COLOR_RED:
        case COLOR_GREEN:
        case COLOR_BLUE:
          if (HIWORD(wParam) == EN_CHANGE) InvalidateRect(GetDlgItem(dialog, IDC_COLOUR_PREVIEW), nullptr, FALSE);
          return FALSE;  // the chooser follows its edits itself
      }
      return FALSE;
  }
  return FALSE;
}

// The add-colour box: the colour shown, a name of 3 to 64 characters.
struct AddState {
  COLORREF colour;
  HWND list;
};

INT_PTR CALLBACK AddColourProc(HWND box, UINT message, WPARAM wParam, LPARAM lParam) {
  auto* state = reinterpret_cast<AddState*>(GetWindowLongPtrA(box, DWLP_USER));
  if (const INT_PTR brush = DialogColours(message, wParam)) return brush;
  switch (message) {
    case WM_INITDIALOG:
      SetWindowLongPtrA(box, DWLP_USER, lParam);
      state = reinterpret_cast<AddState*>(lParam);
      SetDlgItemInt(box, IDC_ADD_COLOUR_RED, GetRValue(state->colour), FALSE);
      SetDlgItemInt(box, IDC_ADD_COLOUR_GREEN, GetGValue(state->colour), FALSE);
      SetDlgItemInt(box, IDC_ADD_COLOUR_BLUE, GetBValue(state->colour), FALSE);
      SendDlgItemMessageA(box, IDC_ADD_COLOUR_NAME, EM_LIMITTEXT, 64, 0);
      EnableWindow(GetDlgItem(box, IDOK), FALSE);
      return TRUE;
    case WM_DRAWITEM:
      if (state && wParam == IDC_ADD_COLOUR_SWATCH) {
        const auto& item = *reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
        RECT r = item.rcItem;
        DrawEdge(item.hDC, &r, EDGE_SUNKEN, BF_RECT | BF_ADJUST);
        FillRectWith(item.hDC, r, state->colour);
        return TRUE;
      }
      return FALSE;
    case WM_COMMAND:
      if (!state) return FALSE;
      if (LOWORD(wParam) == IDC_ADD_COLOUR_NAME && HIWORD(wParam) == EN_CHANGE)
        EnableWindow(GetDlgItem(box, IDOK), GetWindowTextLengthA(GetDlgItem(box, IDC_ADD_COLOUR_NAME)) >= 3);
      if (LOWORD(wParam) == IDOK && GetWindowTextLengthA(GetDlgItem(box, IDC_ADD_COLOUR_NAME)) >= 3) {
        char name[65] = "";
        GetDlgItemTextA(box, IDC_ADD_COLOUR_NAME, name, sizeof name);
        const LRESULT at = SendMessageA(state->list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name));
        if (at >= 0) SendMessageA(state->list, LB_SETITEMDATA, at, state->colour);
        EndDialog(box, at >= 0 ? 1 : 0);
      }
      if (LOWORD(wParam) == IDCANCEL) EndDialog(box, 0);
      return TRUE;
  }
  return FALSE;
}

// The tables of the program's folder, by name without extension.
INT_PTR CALLBACK OpenTableProc(HWND box, UINT message, WPARAM wParam, LPARAM lParam) {
  auto* fileName = reinterpret_cast<char*>(GetWindowLongPtrA(box, DWLP_USER));
  if (const INT_PTR brush = DialogColours(message, wParam)) return brush;
  switch (message) {
    case WM_INITDIALOG: {
      SetWindowLongPtrA(box, DWLP_USER, lParam);
      fileName = reinterpret_cast<char*>(lParam);
      HWND names = GetDlgItem(box, IDC_OPEN_TABLE_NAMES);
      WIN32_FIND_DATAA found;
      HANDLE search = FindFirstFileA(JoinPath(Settings.ApplicationPath, "*.CCL").c_str(), &found);
      if (search != INVALID_HANDLE_VALUE) {
        do {
          if (found.cFileName[0] == '.') continue;
          const std::string name(found.cFileName);
          SendMessageA(names, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name.substr(0, name.find('.')).c_str()));
        } while (FindNextFileA(search, &found));
        FindClose(search);
      }
      const std::string current(fileName);
      SendMessageA(names, CB_SELECTSTRING, static_cast<WPARAM>(-1),
                   reinterpret_cast<LPARAM>(current.substr(0, current.find('.')).c_str()));
      return TRUE;
    }
    case WM_COMMAND:
      if (!fileName) return FALSE;
      if (LOWORD(wParam) == IDOK || (LOWORD(wParam) == IDC_OPEN_TABLE_NAMES && HIWORD(wParam) == CBN_DBLCLK)) {
        char name[256] = "";
        GetDlgItemTextA(box, IDC_OPEN_TABLE_NAMES, name, sizeof name);
        // The box takes typed names too; only a table of the program's folder is opened.
        const std::string chosen = std::string(name) + ".CCL";
        if (!name[0] || !IsPlainFileName(chosen.c_str())) return TRUE;
        CopyText(fileName, 261, chosen.c_str());
        EndDialog(box, 1);
      }
      if (LOWORD(wParam) == IDCANCEL) EndDialog(box, 0);
      return TRUE;
  }
  return FALSE;
}

}  // namespace

int LoadColourTable(HWND dialog, const char* path, int listId) {
  HWND list = GetDlgItem(dialog, listId);
  SendMessageA(list, LB_RESETCONTENT, 0, 0);
  std::vector<NamedColour> table;
  if (!ReadColourTable(path, &table)) return 0;
  for (const NamedColour& c : table) {
    const LRESULT at = SendMessageA(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(c.name.c_str()));
    if (at >= 0) SendMessageA(list, LB_SETITEMDATA, at, c.colour);
  }
  return 1;
}

int SaveColourTable(HWND dialog, const char* path, int listId) {
  HWND list = GetDlgItem(dialog, listId);
  const LRESULT count = SendMessageA(list, LB_GETCOUNT, 0, 0);
  std::vector<NamedColour> table;
  for (int i = 0; i < count; ++i)
    table.push_back({ItemName(list, i), static_cast<uint32_t>(SendMessageA(list, LB_GETITEMDATA, i, 0))});
  WriteColourTable(path, count < 0 ? nullptr : &table);
  return count >= 0;
}

int AddColourDialog(HWND owner, COLORREF colour, int listId) {
  AddState state{colour, GetDlgItem(owner, listId)};
  return DialogBoxParamA(GetModuleHandleA(nullptr), "COMMONAddColourBox", owner, AddColourProc,
                         reinterpret_cast<LPARAM>(&state)) == 1;
}

int OpenColourTableDialog(HWND owner, char* fileName) {
  return DialogBoxParamA(GetModuleHandleA(nullptr), "COMMONOpenColourTableBox", owner, OpenTableProc,
                         reinterpret_cast<LPARAM>(fileName)) == 1;
}

BOOL ChooseColourWithTable(HWND owner, COLORREF* colour) {
  INITCOMMONCONTROLSEX controls{sizeof controls, ICC_UPDOWN_CLASS};
  InitCommonControlsEx(&controls);
  COLORREF custom[16];
  for (COLORREF& c : custom) c = RGB(255, 255, 255);
  CHOOSECOLORA choose{};
  choose.lStructSize = sizeof choose;
  choose.hwndOwner = owner;
  choose.hInstance = reinterpret_cast<HWND>(GetModuleHandleA(nullptr));
  choose.rgbResult = *colour;
  choose.lpCustColors = custom;
  choose.Flags = CC_RGBINIT | CC_FULLOPEN | CC_ENABLEHOOK | CC_ENABLETEMPLATE;  // 0x33
  choose.lpfnHook = ColourHook;
  choose.lpTemplateName = "COMMONColourSelectBox";
  const BOOL chosen = ChooseColorA(&choose);
  if (chosen) *colour = choose.rgbResult;
  return chosen;
}
