#include "render/page_parts.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "base/dib.h"
#include "calendar/calendar_dates.h"

std::string MonthTitle(int month, int year, bool withYear) {
  if (!withYear) return MonthName(month);
  char text[300];
  std::snprintf(text, sizeof text, "%s %d", MonthName(month), year);
  return text;
}

Rect DrawBox(Canvas& canvas, const Rect& cell, int32_t exterior, int32_t interior, int32_t radius) {
  Rect box = Deflated(cell, exterior);
  canvas.RoundRect(box, radius, radius);
  return Deflated(box, interior);
}

void DrawShadowedText(Canvas& canvas, const std::string& text, Rect shadowRect, Rect textRect, uint32_t format,
                      Colour shadowColour, Colour textColour) {
  canvas.SetTextColour(shadowColour);
  canvas.DrawText(text, &shadowRect, format);
  canvas.SetTextColour(textColour);
  canvas.DrawText(text, &textRect, format);
}

void DrawSmallMonth(Canvas& canvas, const Rect& cell, int year, int month, bool withYear, Colour titleColour,
                    Colour bodyColour) {
  const uint32_t format = kDtCenter | kDtSingleLine | kDtNoPrefix;
  const int32_t smallW = Width(cell) / 7, smallH = Height(cell) / 8;
  Rect title{cell.left, cell.top, cell.right, cell.top + smallH};
  canvas.SetTextColour(titleColour);
  canvas.DrawText(MonthTitle(month, year, withYear), &title, format);
  canvas.SetTextColour(bodyColour);
  for (int column = 0; column < 7; ++column) {
    Rect r = RectOfSize(cell.left + column * smallW, cell.top + smallH, smallW, smallH);
    canvas.DrawText(std::string(DayName(column), std::min<size_t>(1, std::strlen(DayName(column)))), &r, format);
  }
  int column = FirstWeekdayColumn(year, month), row = 2;
  for (int day = 1; day <= MonthLength(year, month); ++day) {
    if (column >= 7) {
      column = 0;
      ++row;
    }
    Rect r = RectOfSize(cell.left + column * smallW, cell.top + row * smallH, smallW, smallH);
    canvas.DrawText(std::to_string(day), &r, format);
    ++column;
  }
}

bool PictureSize(BlockHandle dib, int32_t* width, int32_t* height) {
  if (!dib || !DibBlockIsValid(dib)) return false;
  BlockLock lock(dib);
  const BitmapInfoHeader* h = lock.as<BitmapInfoHeader>();
  *width = h->biWidth;
  *height = std::abs(h->biHeight);
  return *width > 0 && *height > 0;
}

PictureFit FitPicture(const Rect& box, int32_t pictureWidth, int32_t pictureHeight, bool cover) {
  int64_t byWidth = static_cast<int64_t>(Width(box)) * 1000 / pictureWidth;
  int64_t byHeight = static_cast<int64_t>(Height(box)) * 1000 / pictureHeight;
  // Ties take the height quotient; they are equal then anyway.
  int64_t scale = cover ? std::max(byWidth, byHeight) : (byWidth < byHeight ? byWidth : byHeight);
  scale = std::max<int64_t>(std::min<int64_t>(scale, INT32_MAX), INT32_MIN);
  auto scaled = [scale](int32_t side) {
    int64_t v = side * scale / 1000;
    return static_cast<int32_t>(std::max<int64_t>(std::min<int64_t>(v, INT32_MAX), INT32_MIN));
  };
  return {static_cast<int32_t>(scale), scaled(pictureWidth), scaled(pictureHeight)};
}

void PlacePicture(const Rect& box, const PictureFit& fit, int32_t placement, int32_t* x, int32_t* y) {
  const int32_t spareW = Width(box) - fit.width, spareH = Height(box) - fit.height;
  switch (placement) {
    case 0: *x = 0, *y = 0; break;
    case 2: *x = spareW, *y = 0; break;
    case 8: *x = 0, *y = spareH; break;
    case 10: *x = spareW, *y = spareH; break;
    default: *x = spareW / 2, *y = spareH / 2; break;
  }
}

void DrawScreenFrame(Canvas& canvas, const Rect& pageRect) {
  canvas.FrameRect(Inflated(pageRect, 1, 1), canvas.ButtonShadowColour());
}
