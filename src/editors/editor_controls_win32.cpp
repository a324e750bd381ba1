#include "editors/editor_controls_win32.h"

#include "render/primitives_win32.h"

INT_PTR DialogColours(UINT message, WPARAM dc) {
  if (message != WM_CTLCOLORDLG && message != WM_CTLCOLORSTATIC && message != WM_CTLCOLORBTN) return 0;
  SetBkColor(reinterpret_cast<HDC>(dc), GetSysColor(COLOR_BTNFACE));
  SetTextColor(reinterpret_cast<HDC>(dc), GetSysColor(COLOR_BTNTEXT));
  return reinterpret_cast<INT_PTR>(GetSysColorBrush(COLOR_BTNFACE));
}

INT_PTR TabFace(HWND tab, UINT message, WPARAM wParam) {
  if (message != WM_ERASEBKGND) return DialogColours(message, wParam);
  RECT r;
  GetClientRect(tab, &r);
  FillRect(reinterpret_cast<HDC>(wParam), &r, GetSysColorBrush(COLOR_BTNFACE));
  return TRUE;
}

void SetFontSample(HWND dialog, int id, const char* face, int weight, int italic, HFONT* held) {
  if (*held) DeleteObject(*held);
  *held = CreateFontA(24, 0, 0, 0, weight, italic ? TRUE : FALSE, 0, 0, DEFAULT_CHARSET, 0, 0, 0, 0, face);
  SetDlgItemTextA(dialog, id, face);
  SendDlgItemMessageA(dialog, id, WM_SETFONT, reinterpret_cast<WPARAM>(*held), TRUE);
}

void DrawPlacementGlyph(const DRAWITEMSTRUCT* item, int firstId) {
  DrawBitmapButton(item, GetModuleHandleA(nullptr), MAKEINTRESOURCEA(kAlignmentGlyphs), firstId,
                   static_cast<int>(item->CtlID));
}
