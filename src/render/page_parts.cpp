#include "render/page_parts.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "base/dib.h"
#include "calendar/calendar_dates.h"
#include "render/primitives.h"

std::string MonthTitle(int month, int year, bool withYear) {
  if (!withYear) return MonthName(month);
  char text[300];
  std::snprintf(text, sizeof text, "%s %d", MonthName(month), year);
  return text;
}

Box DrawBox(Canvas& canvas, const Box& cell, Length exterior, Length interior, Length radius) {
  const Box box = Deflated(cell, exterior);
  canvas.RoundRect(ToRect(box), Device(radius), Device(radius));
  return Deflated(box, interior);
}

void DrawTextIn(Canvas& canvas, const std::string& text, const Box& box, uint32_t format) {
  Rect r = ToRect(box);
  canvas.DrawText(text, &r, format);
}

void DrawShadowedText(Canvas& canvas, const std::string& text, const Box& shadowRect, const Box& textRect,
                      uint32_t format, Colour shadowColour, Colour textColour) {
  canvas.SetTextColour(shadowColour);
  DrawTextIn(canvas, text, shadowRect, format);
  canvas.SetTextColour(textColour);
  DrawTextIn(canvas, text, textRect, format);
}

void DrawSmallMonth(Canvas& canvas, const Box& cell, int year, int month, bool withYear, Colour titleColour,
                    Colour bodyColour) {
  const uint32_t format = kDtCenter | kDtSingleLine | kDtNoPrefix;
  const Length smallW = Width(cell) / 7, smallH = Height(cell) / 8;
  canvas.SetTextColour(titleColour);
  DrawTextIn(canvas, MonthTitle(month, year, withYear), BoxOfSize(cell.left, cell.top, Width(cell), smallH), format);
  canvas.SetTextColour(bodyColour);
  for (int column = 0; column < 7; ++column) {
    const std::string initial(DayName(column), std::min<size_t>(1, std::strlen(DayName(column))));
    DrawTextIn(canvas, initial, BoxOfSize(cell.left + column * smallW, cell.top + smallH, smallW, smallH), format);
  }
  int column = FirstWeekdayColumn(year, month), row = 2;
  for (int day = 1; day <= MonthLength(year, month); ++day) {
    if (column >= 7) {
      column = 0;
      ++row;
    }
    DrawTextIn(canvas, std::to_string(day), BoxOfSize(cell.left + column * smallW, cell.top + row * smallH, smallW, smallH),
               format);
    ++column;
  }
}

int PreviousYear(int year) { return year > INT32_MIN ? year - 1 : year; }
int NextYear(int year) { return year < INT32_MAX ? year + 1 : year; }

FontSpec PageFont(Length pageHeight, Length height, int32_t weight, int32_t italic, const char* face) {
  return {Device(height < pageHeight ? height : pageHeight), weight, italic, face};
}

bool PictureSize(BlockHandle dib, int32_t* width, int32_t* height) {
  if (!dib || !DibBlockIsValid(dib)) return false;
  BlockLock lock(dib);
  const BitmapInfoHeader* h = lock.as<BitmapInfoHeader>();
  *width = h->biWidth;
  *height = std::abs(h->biHeight);
  return *width > 0 && *height > 0;
}

PictureFit FitPicture(const Box& box, int32_t pictureWidth, int32_t pictureHeight, bool cover) {
  const Length byWidth = Width(box) * 1000 / pictureWidth;
  const Length byHeight = Height(box) * 1000 / pictureHeight;
  // Ties take the height quotient; they are equal then anyway.
  Length scale = cover ? std::max(byWidth, byHeight) : (byWidth < byHeight ? byWidth : byHeight);
  // No page needs a scale near 2^31 thousandths; kept below it, the products
  // below cannot overflow whatever the picture's size.
  scale = Clamped(scale, INT32_MAX);
  return {scale, Bounded(pictureWidth * scale / 1000), Bounded(pictureHeight * scale / 1000)};
}

void PlacePicture(const Box& box, const PictureFit& fit, int32_t placement, Length* x, Length* y) {
  const Length spareW = Width(box) - fit.width, spareH = Height(box) - fit.height;
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

Box FramedPictureFitBox(const Box& box, Length pad, const FramedPicture& p, Length* shadow) {
  *shadow = 0;
  if (p.bleed) return box;
  Box fit = Deflated(box, pad);
  if (p.dropShadow) *shadow = Percent(std::min(Width(fit), Height(fit)), p.shadowOffset);
  fit.right -= *shadow;
  fit.bottom -= *shadow;
  return fit;
}

bool DrawFramedPicture(Canvas& c, Box* box, Length pad, const FramedPicture& p, bool printing) {
  int32_t pictureW, pictureH;
  if (!p.show || !PictureSize(p.dib, &pictureW, &pictureH)) return false;
  Length shadow;
  if (p.bleed) c.Clip(ToRect(*box));
  *box = FramedPictureFitBox(*box, pad, p, &shadow);
  const PictureFit fit = FitPicture(*box, pictureW, pictureH, p.bleed);
  Length x, y;
  PlacePicture(*box, fit, p.placement, &x, &y);
  c.SaveState();
  c.SetOrigin(Device(box->left + x), Device(box->top + y));
  if (!p.bleed && p.dropShadow) {
    const Colour shadowColour = Mix(p.frameColour, p.background);
    if (p.shadowSoftness) {
      DrawSoftShadow(c, shadow, shadow, fit.width + shadow, fit.height + shadow, shadowColour, p.background,
                     p.shadowSoftness);
    } else {
      c.SetPen(kNullPen);
      c.SetBrush(SolidBrush(shadowColour));
      c.Rectangle(ToRect({shadow, shadow, fit.width + shadow, fit.height + shadow}));
    }
  }
  c.DrawPicture(p.dib, Device(fit.width), Device(fit.height), printing);
  if (!p.bleed && p.showFrame) {
    c.SetPen(SolidPen(p.frameColour));
    c.SetBrush(kNullBrush);
    c.Rectangle(ToRect({0, 0, fit.width, fit.height}));
  }
  c.RestoreState();
  if (p.bleed) c.Unclip();
  c.EndStage();
  return true;
}
