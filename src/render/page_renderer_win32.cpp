#include "render/page_renderer_win32.h"

#include "render/gdi_canvas_win32.h"
#include "render/page_renderer.h"

int DrawCalendarPage(HWND, HDC dc, const RECT* pageRect, CalendarDocument document, int pageIndex, int printing,
                     int drawPictureHalf, int drawCalendarHalf) {
  if (!dc || !pageRect) return 0;
  GdiCanvas canvas(dc);
  const Rect page{pageRect->left, pageRect->top, pageRect->right, pageRect->bottom};
  return DrawCalendarPage(canvas, page, document, pageIndex, printing != 0, drawPictureHalf != 0,
                          drawCalendarHalf != 0);
}
