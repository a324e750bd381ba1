#include "editors/font_box_win32.h"

#include <commctrl.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "base/text.h"
#include "editors/control_binding.h"
#include "editors/dialog_controls_win32.h"
#include "editors/editor_controls_win32.h"
#include "res/editor_dialog_ids.h"

namespace {

struct FontBoxState {
  FontRequest* request;
  HFONT sample = nullptr;
};

FontBoxState* State(HWND box) { return reinterpret_cast<FontBoxState*>(GetWindowLongPtrA(box, DWLP_USER)); }

LPARAM StyleValue(LONG weight, BYTE italic) { return (weight & 0xFFFF) | static_cast<LPARAM>(italic) << 16; }

int CALLBACK AddFamily(const LOGFONTA* font, const TEXTMETRICA*, DWORD, LPARAM list) {
  if (font->lfFaceName[0])
    SendMessageA(reinterpret_cast<HWND>(list), CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(font->lfFaceName));
  return 1;
}

// A style is listed once by its name, whatever weights share the name.
int CALLBACK AddStyle(const LOGFONTA* font, const TEXTMETRICA*, DWORD, LPARAM list) {
  const auto* full = reinterpret_cast<const ENUMLOGFONTEXA*>(font);
  const char* name = reinterpret_cast<const char*>(full->elfStyle);
  HWND styles = reinterpret_cast<HWND>(list);
  if (SendMessageA(styles, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(name)) != CB_ERR)
    return 1;
  const LRESULT at = SendMessageA(styles, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name));
  if (at >= 0) SendMessageA(styles, CB_SETITEMDATA, at, StyleValue(font->lfWeight, font->lfItalic));
  return 1;
}

std::string ItemText(HWND box, int id) {
  char text[261] = "";
  GetDlgItemTextA(box, id, text, sizeof text);
  return text;
}

void MakeSample(HWND box, FontBoxState* state, LPARAM style) {
  HWND sample = GetDlgItem(box, IDC_FONT_SAMPLE);
  const std::string face = ItemText(box, IDC_FONT_FAMILY);
  HFONT font = CreateFontA(48, 0, 0, 0, LOWORD(style), static_cast<DWORD>(style >> 16 & 0xFF), 0, 0,
                           DEFAULT_CHARSET, 0, 0, 0, 0, face.c_str());
  SendMessageA(sample, WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
  if (state->sample) DeleteObject(state->sample);
  state->sample = font;
}

void FamilyChanged(HWND box, FontBoxState* state) {
  const std::string face = ItemText(box, IDC_FONT_FAMILY);
  SetDlgItemTextA(box, IDC_FONT_SAMPLE, face.c_str());
  HWND styles = GetDlgItem(box, IDC_FONT_STYLE);
  SendMessageA(styles, CB_RESETCONTENT, 0, 0);
  LOGFONTA wanted{};
  wanted.lfCharSet = DEFAULT_CHARSET;
  CopyText(wanted.lfFaceName, sizeof wanted.lfFaceName, face.c_str());
  HDC dc = GetDC(box);
  EnumFontFamiliesExA(dc, &wanted, AddStyle, reinterpret_cast<LPARAM>(styles), 0);
  ReleaseDC(box, dc);
  // The request's own style when the family has it, else its first; the
  // request keeps its weight and italic until the user picks a style.
  const LPARAM own = StyleValue(state->request->weight, static_cast<BYTE>(state->request->italic));
  const int count = static_cast<int>(SendMessageA(styles, CB_GETCOUNT, 0, 0));
  int chosen = count > 0 ? 0 : -1;
  for (int i = 0; i < count; ++i)
    if (SendMessageA(styles, CB_GETITEMDATA, i, 0) == own) {
      chosen = i;
      break;
    }
  SendMessageA(styles, CB_SETCURSEL, chosen, 0);
  MakeSample(box, state, chosen >= 0 ? SendMessageA(styles, CB_GETITEMDATA, chosen, 0) : 0);
}

void StyleChanged(HWND box, FontBoxState* state) {
  HWND styles = GetDlgItem(box, IDC_FONT_STYLE);
  const LRESULT at = SendMessageA(styles, CB_GETCURSEL, 0, 0);
  if (at < 0) return;
  const LPARAM style = SendMessageA(styles, CB_GETITEMDATA, at, 0);
  state->request->weight = LOWORD(style);
  state->request->italic = static_cast<int32_t>(style >> 16 & 0xFFFF);
  MakeSample(box, state, style);
}

// The first entry spelt exactly as `text`, letter case included; -1 for none.
int ExactEntry(HWND list, const char* text) {
  const int count = static_cast<int>(SendMessageA(list, CB_GETCOUNT, 0, 0));
  char entry[261];
  for (int i = 0; i < count; ++i)
    if (SendMessageA(list, CB_GETLBTEXTLEN, i, 0) < static_cast<LRESULT>(sizeof entry) &&
        SendMessageA(list, CB_GETLBTEXT, i, reinterpret_cast<LPARAM>(entry)) >= 0 && std::strcmp(entry, text) == 0)
      return i;
  return -1;
}

void Open(HWND box, FontBoxState* state) {
  HWND families = GetDlgItem(box, IDC_FONT_FAMILY);
  HDC dc = GetDC(box);
  LOGFONTA any{};
  any.lfCharSet = DEFAULT_CHARSET;
  EnumFontFamiliesExA(dc, &any, AddFamily, reinterpret_cast<LPARAM>(families), 0);
  ReleaseDC(box, dc);
  const FontRequest& r = *state->request;
  const int entry = ExactEntry(families, r.face);
  SendMessageA(families, CB_SETCURSEL, entry, 0);
  // A face this system lacks stays as the page names it, not emptied.
  if (entry < 0) SetWindowTextA(families, r.face);
  PostMessageA(box, WM_COMMAND, IDC_FONT_FAMILY_CHANGED, 0);

  // The caller's range replaces the template's, through the up-down's text
  // as every up-down of the editors is set up.
  char range[48];
  std::snprintf(range, sizeof range, "%d,%d,%d", r.minimum, r.maximum, r.size);
  SetDlgItemTextA(box, IDC_FONT_SIZE + kUpDownOffset, range);
  Win32DialogControls controls(box);
  SetUpUpDown(controls, IDC_FONT_SIZE + kUpDownOffset);
  if (r.minimum == 0 && r.maximum == 0) {
    controls.Enable(IDC_FONT_SIZE, false);
    controls.Enable(IDC_FONT_SIZE + kUpDownOffset, false);
  }
  controls.SetNumber(IDC_FONT_SIZE, static_cast<uint32_t>(r.size));
  SetFocus(GetDlgItem(box, IDOK));
}

void Close(HWND box, FontBoxState* state, int result) {
  if (state->sample) DeleteObject(state->sample);
  state->sample = nullptr;
  if (result) {
    CopyText(state->request->face, sizeof state->request->face, ItemText(box, IDC_FONT_FAMILY).c_str());
    state->request->size = static_cast<int32_t>(GetDlgItemInt(box, IDC_FONT_SIZE, nullptr, FALSE));
  }
  EndDialog(box, result);
}

INT_PTR CALLBACK FontBoxProc(HWND box, UINT message, WPARAM wParam, LPARAM lParam) {
  FontBoxState* state = State(box);
  if (const INT_PTR brush = DialogColours(message, wParam)) return brush;
  switch (message) {
    case WM_INITDIALOG:
      SetWindowLongPtrA(box, DWLP_USER, lParam);
      Open(box, reinterpret_cast<FontBoxState*>(lParam));
      return FALSE;  // the focus is on OK already
    case WM_COMMAND:
      if (!state) return FALSE;
      switch (LOWORD(wParam)) {
        case IDC_FONT_FAMILY:
          if (HIWORD(wParam) == CBN_SELCHANGE) PostMessageA(box, WM_COMMAND, IDC_FONT_FAMILY_CHANGED, 0);
          return TRUE;
        case IDC_FONT_STYLE:
          if (HIWORD(wParam) == CBN_SELCHANGE) PostMessageA(box, WM_COMMAND, IDC_FONT_STYLE_CHANGED, 0);
          return TRUE;
        case IDC_FONT_FAMILY_CHANGED: FamilyChanged(box, state); return TRUE;
        case IDC_FONT_STYLE_CHANGED: StyleChanged(box, state); return TRUE;
        case IDOK: Close(box, state, 1); return TRUE;
        case IDCANCEL: Close(box, state, 0); return TRUE;
      }
      return FALSE;
  }
  return FALSE;
}

}  // namespace

int ChooseFontBox(HWND owner, char* face, int32_t* weight, int32_t* italic, int32_t* size, int minimum, int maximum) {
  INITCOMMONCONTROLSEX controls{sizeof controls, ICC_UPDOWN_CLASS};
  InitCommonControlsEx(&controls);
  FontRequest request{};
  CopyText(request.face, sizeof request.face, face);
  if (weight) request.weight = *weight;
  if (italic) request.italic = *italic;
  if (size) request.size = *size;
  request.minimum = minimum, request.maximum = maximum;
  FontBoxState state{&request};
  if (DialogBoxParamA(GetModuleHandleA(nullptr), "FontBox", owner, FontBoxProc, reinterpret_cast<LPARAM>(&state)) !=
      1)
    return 0;
  if (weight) *weight = request.weight;
  if (italic) *italic = request.italic;
  if (size) *size = request.size;
  CopyText(face, sizeof request.face, request.face);
  return 1;
}
