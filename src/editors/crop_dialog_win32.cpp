#include "editors/crop_dialog_win32.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "base/program_win32.h"
#include "editors/picture_tab_win32.h"
#include "pictures/picture_crop.h"
#include "pictures/resampler.h"
#include "res/picture_dialog_ids.h"
#include "res/string_ids.h"

namespace {

constexpr int kHandle = 4;  // half a corner handle's side, in screen pixels

struct CropState {
  HWND dialog;
  BlockHandle picture;
  BlockHandle shown;  // the picture reduced to the area, made once
  WNDPROC button;     // the area is an owner-drawn button that this file draws and drives
  CropShape shape;
  CropFrame frame;
  // A drag: what it took hold of, where it began and the frame then.
  FrameHit held = FrameHit::kNone;
  POINT from{};
  CropFrame start{};
};

CropState* StateOf(HWND window) { return reinterpret_cast<CropState*>(GetWindowLongPtrA(window, GWLP_USERDATA)); }

// The picture in the area as the preview draws it: as large as fits,
// centred; `scale` in thousandths.
struct Mapping {
  int64_t scale, left, top;
};
Mapping MappingOf(HWND area, const CropShape& s) {
  RECT r;
  GetClientRect(area, &r);
  const int64_t W = r.right, H = r.bottom;
  const int64_t f = std::max<int64_t>(1, std::min(W * 1000 / s.pictureW, H * 1000 / s.pictureH));
  return {f, (W - s.pictureW * f / 1000) / 2, (H - s.pictureH * f / 1000) / 2};
}
int64_t ToScreen(int64_t v, int64_t scale) { return v * scale / 1000; }
int64_t ToPicture(int64_t v, int64_t scale) { return v * 1000 / scale; }

void ShowKept(const CropState& s) {
  char text[128];
  std::snprintf(text, sizeof text, StringTableText(IDS_CROP_KEEPS).c_str(), s.frame.width, s.frame.height,
                s.shape.pictureW, s.shape.pictureH);
  SetDlgItemTextA(s.dialog, IDC_CROP_KEEPS, text);
}

void SetFrame(HWND area, CropState* s, const CropFrame& frame) {
  s->frame = frame;
  ShowKept(*s);
  InvalidateRect(area, nullptr, FALSE);
}

// The part of the picture outside the frame, which the crop takes away, is
// shown darker.
void Darken(HDC dc, const RECT& picture, const RECT& frame) {
  HDC black = CreateCompatibleDC(dc);
  HBITMAP pixel = CreateCompatibleBitmap(dc, 1, 1);
  HGDIOBJ old = SelectObject(black, pixel);
  PatBlt(black, 0, 0, 1, 1, BLACKNESS);
  const BLENDFUNCTION half{AC_SRC_OVER, 0, 128, 0};
  const RECT parts[] = {{picture.left, picture.top, picture.right, frame.top},
                        {picture.left, frame.bottom, picture.right, picture.bottom},
                        {picture.left, frame.top, frame.left, frame.bottom},
                        {frame.right, frame.top, picture.right, frame.bottom}};
  for (const RECT& r : parts)
    if (r.right > r.left && r.bottom > r.top)
      AlphaBlend(dc, r.left, r.top, r.right - r.left, r.bottom - r.top, black, 0, 0, 1, 1, half);
  SelectObject(black, old);
  DeleteObject(pixel);
  DeleteDC(black);
}

void PaintArea(HWND area, const CropState& s) {
  PAINTSTRUCT paint;
  HDC dc = BeginPaint(area, &paint);
  RECT client;
  GetClientRect(area, &client);
  FillRect(dc, &client, GetSysColorBrush(COLOR_APPWORKSPACE));
  const int saved = SaveDC(dc);
  DRAWITEMSTRUCT item{};
  item.hDC = dc;
  item.rcItem = client;
  DrawPicturePreview(&item, s.shown ? s.shown : s.picture);
  RestoreDC(dc, saved);
  const Mapping m = MappingOf(area, s.shape);
  const RECT frame{static_cast<LONG>(m.left + ToScreen(s.frame.x, m.scale)),
                   static_cast<LONG>(m.top + ToScreen(s.frame.y, m.scale)),
                   static_cast<LONG>(m.left + ToScreen(int64_t{s.frame.x} + s.frame.width, m.scale)),
                   static_cast<LONG>(m.top + ToScreen(int64_t{s.frame.y} + s.frame.height, m.scale))};
  Darken(dc,
         {static_cast<LONG>(m.left), static_cast<LONG>(m.top),
          static_cast<LONG>(m.left + ToScreen(s.shape.pictureW, m.scale)),
          static_cast<LONG>(m.top + ToScreen(s.shape.pictureH, m.scale))},
         frame);
  // A white line inside a black one shows on any picture.
  FrameRect(dc, &frame, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
  RECT inner = frame;
  InflateRect(&inner, -1, -1);
  FrameRect(dc, &inner, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
  for (int corner = 0; corner < 4; ++corner) {
    const LONG x = corner & 1 ? frame.right : frame.left, y = corner & 2 ? frame.bottom : frame.top;
    RECT handle{x - kHandle, y - kHandle, x + kHandle, y + kHandle};
    FillRect(dc, &handle, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
    FrameRect(dc, &handle, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
  }
  if (GetFocus() == area) {
    RECT focus = client;
    InflateRect(&focus, -1, -1);
    DrawFocusRect(dc, &focus);
  }
  EndPaint(area, &paint);
}

// Where the pointer is over the picture, in its pixels.
void PointerInPicture(HWND area, const CropState& s, LPARAM lParam, int64_t* x, int64_t* y) {
  const Mapping m = MappingOf(area, s.shape);
  *x = ToPicture(static_cast<short>(LOWORD(lParam)) - m.left, m.scale);
  *y = ToPicture(static_cast<short>(HIWORD(lParam)) - m.top, m.scale);
}

bool KeyOf(WPARAM key, FrameKey* out) {
  switch (key) {
    case VK_LEFT: *out = FrameKey::kLeft; return true;
    case VK_RIGHT: *out = FrameKey::kRight; return true;
    case VK_UP: *out = FrameKey::kUp; return true;
    case VK_DOWN: *out = FrameKey::kDown; return true;
  }
  return false;
}

LRESULT CALLBACK AreaProc(HWND area, UINT message, WPARAM wParam, LPARAM lParam) {
  CropState* s = StateOf(area);
  switch (message) {
    case WM_PAINT: PaintArea(area, *s); return 0;
    case WM_GETDLGCODE: return CallWindowProcA(s->button, area, message, wParam, lParam) | DLGC_WANTARROWS;
    case WM_SETFOCUS:
    case WM_KILLFOCUS: InvalidateRect(area, nullptr, FALSE); return 0;
    case WM_LBUTTONDOWN: {
      SetFocus(area);
      int64_t x, y;
      PointerInPicture(area, *s, lParam, &x, &y);
      s->held = HitFrame(s->frame, x, y, ToPicture(kHandle + 1, MappingOf(area, s->shape).scale));
      s->from = {static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))};
      s->start = s->frame;
      if (s->held != FrameHit::kNone) SetCapture(area);
      return 0;
    }
    case WM_MOUSEMOVE: {
      if (s->held == FrameHit::kNone) return 0;
      const int64_t scale = MappingOf(area, s->shape).scale;
      const int64_t dx = ToPicture(static_cast<short>(LOWORD(lParam)) - s->from.x, scale);
      const int64_t dy = ToPicture(static_cast<short>(HIWORD(lParam)) - s->from.y, scale);
      SetFrame(area, s, DraggedFrame(s->shape, s->start, s->held, dx, dy));
      return 0;
    }
    case WM_LBUTTONUP:
    case WM_CAPTURECHANGED:
      s->held = FrameHit::kNone;
      if (message == WM_LBUTTONUP) ReleaseCapture();
      return 0;
    case WM_SETCURSOR: {
      POINT p;
      GetCursorPos(&p);
      ScreenToClient(area, &p);
      int64_t x, y;
      PointerInPicture(area, *s, MAKELPARAM(p.x, p.y), &x, &y);
      const FrameHit hit = HitFrame(s->frame, x, y, ToPicture(kHandle + 1, MappingOf(area, s->shape).scale));
      const bool falling = hit == FrameHit::kCorner0 || hit == FrameHit::kCorner3;
      const char* cursor = hit == FrameHit::kNone     ? IDC_ARROW
                           : hit == FrameHit::kInside ? IDC_SIZEALL
                           : falling                  ? IDC_SIZENWSE
                                                      : IDC_SIZENESW;
      SetCursor(LoadCursorA(nullptr, cursor));
      return TRUE;
    }
    case WM_KEYDOWN: {
      FrameKey key;
      if (!KeyOf(wParam, &key)) break;
      SetFrame(area, s, KeyedFrame(s->shape, s->frame, key, GetKeyState(VK_SHIFT) < 0));
      return 0;
    }
  }
  return CallWindowProcA(s->button, area, message, wParam, lParam);
}

INT_PTR CALLBACK CropProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_INITDIALOG) {
    auto* s = reinterpret_cast<CropState*>(lParam);
    s->dialog = dialog;
    SetWindowLongPtrA(dialog, GWLP_USERDATA, lParam);
    HWND area = GetDlgItem(dialog, IDC_CROP_AREA);
    SetWindowLongPtrA(area, GWLP_USERDATA, lParam);
    s->button = reinterpret_cast<WNDPROC>(SetWindowLongPtrA(area, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(AreaProc)));
    // Dragging repaints often: a picture larger than the area is drawn from
    // a copy of the area's size.
    const Mapping m = MappingOf(area, s->shape);
    const int64_t w = ToScreen(s->shape.pictureW, m.scale), h = ToScreen(s->shape.pictureH, m.scale);
    if (m.scale < 1000 && w > 0 && h > 0) s->shown = ResampleDib(s->picture, static_cast<int32_t>(w), static_cast<int32_t>(h));
    SetFrame(area, s, FrameAtFocus(s->shape, 50, 50));
    SetFocus(area);
    return FALSE;  // the focus is set
  }
  CropState* s = StateOf(dialog);
  if (!s || message != WM_COMMAND) return FALSE;
  switch (LOWORD(wParam)) {
    case IDC_CROP_WHOLE:
      SetFrame(GetDlgItem(dialog, IDC_CROP_AREA), s, FrameAtFocus(s->shape, 50, 50));
      return TRUE;
    case IDOK: {
      const BlockHandle cropped = DibCropped(s->picture, s->frame);
      if (!cropped) return ShowMessage(dialog, IDS_MEMORY_FAILED), TRUE;
      s->picture = cropped;
      EndDialog(dialog, IDOK);
      return TRUE;
    }
    case IDCANCEL: EndDialog(dialog, IDCANCEL); return TRUE;
  }
  return FALSE;
}

}  // namespace

bool CropPictureDialog(HWND owner, BlockHandle* picture, int32_t boxW, int32_t boxH) {
  CropState state{};
  state.picture = *picture;
  if (!DibSize(*picture, &state.shape.pictureW, &state.shape.pictureH)) return false;
  state.shape.boxW = boxW;
  state.shape.boxH = boxH;
  DialogBoxParamA(GetModuleHandleA(nullptr), "CropPicture", owner, CropProc, reinterpret_cast<LPARAM>(&state));
  if (state.shown) GlobalBlockFree(state.shown);
  if (state.picture == *picture) return false;
  GlobalBlockFree(*picture);
  *picture = state.picture;
  return true;
}
