#include "editors/editor_controls_win32.h"

#include <string>
#include <vector>

#include "editors/colour_caption.h"
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

void DrawLabelledColourButton(const DRAWITEMSTRUCT* item, COLORREF colour, bool showValue) {
  HDC dc = item->hDC;
  RECT r = item->rcItem;
  const bool pressed = (item->itemState & ODS_SELECTED) != 0, enabled = !(item->itemState & ODS_DISABLED);
  HBRUSH brush = CreateSolidBrush(enabled ? colour : GetSysColor(COLOR_BTNFACE));
  FillRect(dc, &r, brush);
  DeleteObject(brush);
  DrawEdge(dc, &r, pressed ? EDGE_SUNKEN : EDGE_RAISED, BF_RECT | BF_SOFT);
  if (item->itemState & ODS_FOCUS) {
    RECT focus = r;
    InflateRect(&focus, -4, -4);
    DrawFocusRect(dc, &focus);
  }
  std::string caption = showValue ? ColourValueText(colour) : "";
  if (!showValue) {
    std::vector<char> text(static_cast<size_t>(GetWindowTextLengthA(item->hwndItem)) + 1);
    GetWindowTextA(item->hwndItem, text.data(), static_cast<int>(text.size()));
    caption = text.data();
  }
  if (caption.empty() || !enabled) return;
  const UINT align = SetTextAlign(dc, TA_CENTER | TA_TOP);
  const int mode = SetBkMode(dc, TRANSPARENT);
  const COLORREF ink = SetTextColor(dc, CaptionIsWhite(colour) ? RGB(255, 255, 255) : RGB(0, 0, 0));
  TextOutA(dc, (r.left + r.right) / 2 - (pressed ? 2 : 0), r.top + 4 - (pressed ? 1 : 0), caption.c_str(),
           static_cast<int>(caption.size()));
  SetTextColor(dc, ink);
  SetBkMode(dc, mode);
  SetTextAlign(dc, align);
}

void DrawPlacementGlyph(const DRAWITEMSTRUCT* item, int firstId) {
  DrawBitmapButton(item, GetModuleHandleA(nullptr), MAKEINTRESOURCEA(kAlignmentGlyphs), firstId,
                   static_cast<int>(item->CtlID));
}
