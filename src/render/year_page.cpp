// The year at a glance: January to June with the year's title above them on
// the upper half, July to December with the title below them on the lower.
#include <algorithm>
#include <string>

#include "calendar/calendar_dates.h"
#include "render/page_parts.h"
#include "render/page_renderer.h"
#include "render/primitives.h"

namespace {

struct YearLayout {
  Box inner;
  Length pageH;
  Length gutter, titleH, titleShadow;
  Length boxW, boxH, outer, innerInset, radius, smallFontH;
};

YearLayout Layout(const Rect& page, const CalendarHeader& h) {
  YearLayout l;
  l.pageH = Height(ToBox(page));
  l.inner = Deflated(ToBox(page), Percent(Width(ToBox(page)), h.YagPageMargin));
  l.gutter = Percent(Height(l.inner), h.YagGutter);
  l.titleH = Percent(Height(l.inner) / 2, h.YagTitleFontSize);
  l.titleShadow = Percent(l.titleH, h.YagShadowOffset);
  const Box half{l.inner.left, l.inner.top, l.inner.right, l.inner.bottom / 2};
  l.boxW = Width(half) / 3;
  l.boxH = (Height(half) - (2 * l.gutter + l.titleH)) / 2;
  l.outer = Percent(l.boxH, h.YagExteriorPadding);
  l.innerInset = Percent(l.boxH, std::max(int32_t{h.YagInteriorPadding}, int32_t{h.YagRound}));
  l.radius = Percent(l.boxW, h.YagRound);  // not halved, unlike the month pages
  l.smallFontH = (l.boxH - 2 * (l.outer + l.innerInset)) / 8;
  return l;
}

// The year's title at `y`; returns the y below it.
Length DrawTitle(Canvas& c, const YearLayout& l, const CalendarHeader& h, int year, Length y) {
  c.SetFont(PageFont(l.pageH, l.titleH, h.YagTitleFontBold, h.YagTitleFontItal, h.YagTitleFontName));
  const Box r = BoxOfSize(l.inner.left, y, Width(l.inner), l.titleH);
  const uint32_t format = kDtCenter | kDtSingleLine | kDtNoPrefix;
  const std::string text = std::to_string(year);
  if (h.YagShadow) {
    DrawShadowedText(c, text, Offset(r, l.titleShadow, l.titleShadow), r, format, Mix(h.YagPageColour, h.TagTitleColour),
                     h.TagTitleColour);
    y += l.titleH + l.titleShadow;
  } else {
    c.SetTextColour(h.TagTitleColour);
    DrawTextIn(c, text, r, format);
    y += l.titleH;
  }
  c.EndStage();
  return Bounded(y);
}

// Six months in two rows of three from `y`.
void DrawSixMonths(Canvas& c, const YearLayout& l, const CalendarHeader& h, int year, int firstMonth, Length y) {
  c.SetFont(PageFont(l.pageH, l.smallFontH, h.YagFontBold, h.TagFontItal, h.YagFontName));
  c.SetBrush(SolidBrush(h.YagBackColour));
  c.SetPen(SolidPen(h.YagFrameColour));
  for (int i = 0; i < 6; ++i) {
    const Box cell = BoxOfSize(l.inner.left + (i % 3) * l.boxW, y + (i / 3) * l.boxH, l.boxW, l.boxH);
    const Box inside = DrawBox(c, cell, l.outer, l.innerInset, l.radius);
    DrawSmallMonth(c, inside, year, firstMonth + i, h.ShowYearInPages != 0, h.YagColour, h.YagFrameColour);
  }
  c.EndStage();
}

}  // namespace

int DrawYearPage(Canvas& canvas, const Rect& pageRect, CalendarDocument document, bool printing, bool drawUpperHalf,
                 bool drawLowerHalf) {
  CalendarHeader h;
  if (!PageFitsDevice(pageRect) || !GetHeader(document, &h)) return 0;
  TerminateTexts(&h);
  const YearLayout l = Layout(pageRect, h);
  const int year = CalendarYear(&h);
  if (!printing) DrawScreenFrame(canvas, pageRect);
  if (drawUpperHalf) {
    canvas.FillRect({pageRect.left, pageRect.top, pageRect.right, pageRect.bottom / 2}, h.YagPageColour);
    const Length y = DrawTitle(canvas, l, h, year, l.inner.top) + l.gutter;
    DrawSixMonths(canvas, l, h, year, 0, y);
  }
  if (drawLowerHalf) {
    // This fill starts at half the page's height, where the upper one ends at
    // half its bottom coordinate; and the months below start from the inner
    // height alone. Both as the page has always been laid out.
    canvas.FillRect({pageRect.left, Height(pageRect) / 2, pageRect.right, pageRect.bottom}, h.YagPageColour);
    const Length y = Height(l.inner) / 2 + 2 * l.gutter + 2 * (l.outer + l.innerInset);
    DrawSixMonths(canvas, l, h, year, 6, y);
    DrawTitle(canvas, l, h, year, y + 2 * l.boxH + l.gutter);
  }
  return 1;
}
