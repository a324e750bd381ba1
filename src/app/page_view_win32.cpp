#include "app/page_view_win32.h"

#include "app/app_state_win32.h"
#include "app/main_window_win32.h"
#include "app/toolbar_win32.h"
#include "app/window_layout.h"
#include "print/printer_win32.h"
#include "render/gdi_canvas_win32.h"
#include "render/page_renderer.h"
#include "res/main_ids.h"

namespace {

const int kZooms[4] = {100, 200, 400, 800};

// The page view's part of the client area: all of it below the toolbar strip,
// scroll bars included.
Rect ClientRect(HWND window) {
  RECT r;
  GetClientRect(window, &r);
  const int32_t top = r.top + ToolbarBottom(window);
  return {r.left, top < r.bottom ? top : r.bottom, r.right, r.bottom};
}

// The page at the current zoom, at 100 percent shaped like the printer's page
// and as high as 95 percent of the view between the strip and the
// horizontal scroll bar, so that the whole page shows at 100 percent.
Rect ZoomedPageRect(HWND window) {
  RECT page;
  PageRectForWindow(Height(ClientRect(window)) - GetSystemMetrics(SM_CYHSCROLL), &page);
  return ZoomedPage({page.left, page.top, page.right, page.bottom}, App.zoom);
}

// Where the page's top left corner sits in the client area: centred while
// it fits, else moved by the scroll bars.
POINT PageOrigin(HWND window, const Rect& page) {
  const Rect client = ClientRect(window);
  const int bar = GetSystemMetrics(SM_CXVSCROLL);
  const int spaceW = Width(client) - bar, spaceH = Height(client) - bar;
  POINT at;
  at.x = Width(page) < spaceW ? (spaceW - Width(page)) / 2 : 4 - App.scrollX;
  at.y = client.top + (Height(page) < spaceH ? (spaceH - Height(page)) / 2 : 4 - App.scrollY);
  return at;
}

}  // namespace

int CurrentPage() {
  CalendarHeader header;
  if (!GetHeader(App.document, &header)) return 0;
  return header.CurrentPage >= 0 && header.CurrentPage <= 13 ? header.CurrentPage : 0;
}

void UpdateScrollBars(HWND window) {
  const Rect page = ZoomedPageRect(window), client = ClientRect(window);
  const int bar = GetSystemMetrics(SM_CXVSCROLL);
  const struct {
    int id, range, page;
    int* position;
  } bars[] = {{kHorizontalScrollId, Width(page) + 8, Width(client) - bar, &App.scrollX},
              {kVerticalScrollId, Height(page) + 8, Height(client) - bar, &App.scrollY}};
  for (const auto& b : bars) {
    SCROLLINFO info{sizeof info, SIF_ALL, 0, b.range, static_cast<UINT>(b.page > 0 ? b.page : 0), *b.position, 0};
    SetScrollInfo(GetDlgItem(window, b.id), SB_CTL, &info, TRUE);
    GetScrollInfo(GetDlgItem(window, b.id), SB_CTL, &info);
    *b.position = info.nPos;
  }
}

void LayOutChildren(HWND window) {
  RECT whole;
  GetClientRect(window, &whole);
  FitToolbar(window, whole.right - whole.left);
  const Rect client = ClientRect(window);
  const int bar = GetSystemMetrics(SM_CXVSCROLL);
  MoveWindow(GetDlgItem(window, kVerticalScrollId), client.right - bar, client.top, bar, Height(client) - bar, TRUE);
  MoveWindow(GetDlgItem(window, kHorizontalScrollId), 0, client.bottom - bar, client.right - bar, bar, TRUE);
  MoveWindow(GetDlgItem(window, kScrollCornerId), client.right - bar, client.bottom - bar, bar, bar, TRUE);
  UpdateScrollBars(window);
}

void PaintPageView(HWND window) {
  PAINTSTRUCT ps;
  HDC dc = BeginPaint(window, &ps);
  const Rect page = ZoomedPageRect(window);
  const POINT at = PageOrigin(window, page);
  // A page scrolled up stays off the toolbar strip and the scroll bars. A
  // meta region, as the canvas sets and clears clip regions of its own.
  const Rect view = ClientRect(window);
  const int bar = GetSystemMetrics(SM_CXVSCROLL);
  IntersectClipRect(dc, view.left, view.top, view.right - bar, view.bottom - bar);
  SetMetaRgn(dc);
  POINT old;
  SetViewportOrgEx(dc, at.x, at.y, &old);
  {
    GdiCanvas canvas(dc, &App.pictures);
    DrawCalendarPage(canvas, {0, 0, Width(page), Height(page)}, App.document, CurrentPage(), false, true, true);
  }
  SetViewportOrgEx(dc, old.x, old.y, nullptr);
  EndPaint(window, &ps);
}

void SetZoom(HWND window, int command) {
  App.zoom = kZooms[command - IDM_ZOOM_100];
  HMENU menu = GetMenu(window);
  for (int id = IDM_ZOOM_100; id <= IDM_ZOOM_800; ++id)
    CheckMenuItem(menu, id, MF_BYCOMMAND | (id == command ? MF_CHECKED : MF_UNCHECKED));
  App.scrollX = App.scrollY = 0;
  UpdateScrollBars(window);
  InvalidateRect(window, nullptr, TRUE);
}

void ScrollPageView(HWND window, int bar, int request) {
  const int id = bar == SB_VERT ? kVerticalScrollId : kHorizontalScrollId;
  HWND control = GetDlgItem(window, id);
  SCROLLINFO info{sizeof info, SIF_ALL, 0, 0, 0, 0, 0};
  GetScrollInfo(control, SB_CTL, &info);
  int position = info.nPos;
  const int line = 32, page = static_cast<int>(info.nPage);
  switch (request) {
    case SB_LINEUP: position -= line; break;
    case SB_LINEDOWN: position += line; break;
    case SB_PAGEUP: position -= page; break;
    case SB_PAGEDOWN: position += page; break;
    case SB_TOP: position = info.nMin; break;
    case SB_BOTTOM: position = info.nMax; break;
    case SB_THUMBTRACK:
    case SB_THUMBPOSITION: position = info.nTrackPos; break;
    default: return;
  }
  info.fMask = SIF_POS;
  info.nPos = position;
  SetScrollInfo(control, SB_CTL, &info, TRUE);
  GetScrollInfo(control, SB_CTL, &info);
  (bar == SB_VERT ? App.scrollY : App.scrollX) = info.nPos;
  InvalidateRect(window, nullptr, TRUE);
}


bool ScrollKey(HWND window, WPARAM key) {
  const struct {
    WPARAM key;
    int bar, request;
  } keys[] = {{VK_UP, SB_VERT, SB_LINEUP},     {VK_DOWN, SB_VERT, SB_LINEDOWN}, {VK_PRIOR, SB_VERT, SB_PAGEUP},
              {VK_NEXT, SB_VERT, SB_PAGEDOWN}, {VK_HOME, SB_VERT, SB_TOP},      {VK_END, SB_VERT, SB_BOTTOM},
              {VK_LEFT, SB_HORZ, SB_LINEUP},   {VK_RIGHT, SB_HORZ, SB_LINEDOWN}};
  for (const auto& k : keys)
    if (k.key == key) return ScrollPageView(window, k.bar, k.request), true;
  return false;
}
