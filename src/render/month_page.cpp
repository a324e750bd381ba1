// A month page: the picture half above, the calendar half below with the
// heading, the day names, the two captions, the date cells with their events
// and the small previous and next months.
#include <algorithm>
#include <string>

#include "calendar/calendar_dates.h"
#include "calendar/event_list.h"
#include "render/page_parts.h"
#include "render/page_renderer.h"
#include "render/picture_box.h"
#include "render/primitives.h"

namespace {

// Everything the page's layout derives from its rectangle, computed before
// anything is drawn.
struct MonthLayout {
  Box inner;
  Length pageH;
  Length gutter, gridTop, colW, rowH, headBandH, daysBandH;
  Length radius, interior, exterior;
  Length headFontH, daysFontH, dateFontH, eventFontH, captionFontH, smallFontH;
  Length headShadow, dateShadow, pictureInset;
};

MonthLayout Layout(const Rect& page, const MonthPage& p) {
  MonthLayout l;
  l.pageH = Height(ToBox(page));
  const Length margin = Percent(Width(ToBox(page)), p.PageMargin);
  l.inner = Deflated(ToBox(page), margin);
  l.gutter = Percent(Height(l.inner), p.Gutter);
  l.gridTop = Height(l.inner) / 2 + l.inner.top + l.gutter;
  l.colW = Width(l.inner) / 7;
  l.rowH = (Height(l.inner) / 2 - l.gutter) / 7;
  l.headBandH = l.rowH * 2 / 3;
  l.daysBandH = l.rowH - l.headBandH;
  l.radius = Percent(l.colW, p.DateRound) / 2;
  l.interior = Percent(l.daysBandH, p.HeadInteriorPadding);
  l.exterior = Percent(l.daysBandH, std::max(int32_t{p.HeadExteriorPadding}, int32_t{p.DateRound}));
  const Length insets = 2 * (l.interior + l.exterior);
  l.headFontH = l.headBandH - insets;
  l.daysFontH = l.daysBandH - insets;
  l.dateFontH = Percent(l.rowH, p.DateFontSize);
  l.eventFontH = Percent(l.rowH, p.DaysFontSize);
  l.captionFontH = Percent(l.headBandH, p.CapFontSize);
  l.smallFontH = (l.rowH - 2 * (l.exterior + l.interior)) / 8;
  l.headShadow = Percent(l.headFontH, p.DateShadowOffset);
  l.dateShadow = Percent(l.dateFontH, p.DateShadowOffset);
  l.pictureInset = Percent(Width(l.inner), p.PictureExteriorPadding);
  return l;
}

// The box the picture is framed in: it ends a margin short of the middle,
// its bottom coming from the inner height alone, without the inner top.
Box PictureOuterBox(const MonthLayout& l) {
  return {l.inner.left, l.inner.top, l.inner.right, (Height(l.inner) - l.gutter) / 2};
}

FramedPicture PictureOf(const MonthPage& p) {
  return {p.Picture,          p.PictureShowPicture != 0, p.PicturePlacement,  p.PictureDropShadow != 0,
          p.PictureShadowOffset, p.PictureShadowSoftness, p.PictureShowFrame != 0, p.PictureFrameColour,
          p.PageBackgroundColour, false};
}

void DrawPicture(Canvas& c, const MonthLayout& l, const MonthPage& p, bool printing) {
  Box box = PictureOuterBox(l);
  DrawFramedPicture(c, &box, l.pictureInset, PictureOf(p), printing);
}

void DrawHeading(Canvas& c, const MonthLayout& l, const MonthPage& p, const std::string& title) {
  c.SetFont(PageFont(l.pageH, l.headFontH, p.HeadFontBold, p.HeadFontItal, p.HeadFontName));
  c.SetBrush(SolidBrush(p.HeadBackColour));
  c.SetPen(SolidPen(p.HeadFrameColour));
  const Box cell = BoxOfSize(l.inner.left + 2 * l.colW, l.gridTop, 3 * l.colW, l.headBandH);
  const Box text = DrawBox(c, cell, l.exterior, l.interior, l.radius);
  const uint32_t format = static_cast<uint32_t>(p.HeadPlacement) | kDtSingleLine | kDtNoPrefix;
  if (p.HeadShadow) {
    // The shadowed heading is deliberately not centred vertically.
    DrawShadowedText(c, title, text, Offset(text, -l.headShadow, -l.headShadow), format,
                     Mix(p.HeadBackColour, p.HeadFontColour), p.HeadFontColour);
  } else {
    c.SetTextColour(p.HeadFontColour);
    DrawTextIn(c, title, text, format | kDtVCenter);
  }
  c.EndStage();
}

void DrawDayNames(Canvas& c, const MonthLayout& l, const MonthPage& p) {
  c.SetFont(PageFont(l.pageH, l.daysFontH, p.HeadFontBold, p.HeadFontItal, p.HeadFontName));
  c.SetTextColour(p.HeadFontColour);
  c.SetBrush(SolidBrush(p.HeadBackColour));
  c.SetPen(SolidPen(p.HeadFrameColour));
  for (int i = 0; i < 7; ++i) {
    const Box cell = BoxOfSize(l.inner.left + i * l.colW, l.gridTop + l.headBandH, l.colW, l.daysBandH);
    const Box text = DrawBox(c, cell, l.exterior, l.interior, l.radius);
    DrawTextIn(c, DayName(i), text, static_cast<uint32_t>(p.HeadPlacement) | kDtSingleLine | kDtNoPrefix | kDtVCenter);
  }
  c.EndStage();
}

void DrawCaptions(Canvas& c, const MonthLayout& l, const MonthPage& p) {
  c.SetFont(PageFont(l.pageH, l.captionFontH, p.CapFontBold, p.CapFontItal, p.CapFontName));
  c.SetTextColour(p.CapFontColour);
  c.SetBrush(SolidBrush(p.HeadBackColour));
  c.SetPen(SolidPen(p.HeadFrameColour));
  const uint32_t format = static_cast<uint32_t>(p.CapPlacement) | kDtWordBreak | kDtNoPrefix;
  const struct {
    int32_t column;
    const char* text;
  } boxes[] = {{5, p.RightCaption}, {0, p.LeftCaption}};
  for (const auto& b : boxes) {
    const Box cell = BoxOfSize(l.inner.left + b.column * l.colW, l.gridTop, 2 * l.colW, l.headBandH);
    DrawTextIn(c, b.text, DrawBox(c, cell, l.exterior, l.interior, l.radius), format);
  }
  c.EndStage();
}

// Events sit opposite the date number.
uint32_t EventAlignment(int32_t datePlacement) {
  return datePlacement == 0 || datePlacement == 8 ? kDtRight : kDtLeft;
}

void DrawEvent(Canvas& c, const MonthLayout& l, const MonthPage& p, const FontSpec& eventFont, const Box& cell,
               int month, int day) {
  char text[1024];
  if (p.DateFontPlacement == 1 || !FindEvent(text, sizeof text, p.Events, month, day)) return;
  Box r = Deflated(Deflated(cell, l.exterior), l.interior);
  const uint32_t format = EventAlignment(p.DateFontPlacement) | kDtWordBreak | kDtNoPrefix;
  c.SetFont(eventFont);
  c.SetTextColour(p.DaysFontColour);
  if (p.DateFontPlacement == 0 || p.DateFontPlacement == 2) {
    // Under a number at the top, the text sits at the bottom of the cell, and
    // runs above its top when it is taller than the cell.
    Rect measured = ToRect(r);
    c.DrawText(text, &measured, format | kDtCalcRect);
    r.top = r.bottom - Height(ToBox(measured));
  }
  DrawTextIn(c, text, r, format);
}

// Draws the date cells and returns the grid position after the last day.
void DrawDates(Canvas& c, const MonthLayout& l, const MonthPage& p, int year, int month, int32_t* column,
               Length* y) {
  const FontSpec dateFont = PageFont(l.pageH, l.dateFontH, p.DateFontBold, p.DateFontItal, p.DateFontName);
  const FontSpec eventFont = PageFont(l.pageH, l.eventFontH, p.DaysFontBold, p.DaysFontItal, p.DaysFontName);
  const uint32_t format = static_cast<uint32_t>(p.DateFontPlacement) | kDtSingleLine | kDtNoPrefix;
  const Colour shadowColour = Mix(p.DateBackColour, p.DateFontColour);
  *y = l.gridTop + l.rowH;
  *column = FirstWeekdayColumn(year, month);
  for (int day = 0; day < MonthLength(year, month); ++day) {
    if (*column >= 7) {
      *y += l.rowH;
      *column = 0;
    }
    const Box cell = BoxOfSize(l.inner.left + *column * l.colW, *y, l.colW, l.rowH);
    c.SetBrush(SolidBrush(p.DateBackColour));
    c.SetPen(SolidPen(p.DateFrameColour));
    const Box text = DrawBox(c, cell, l.exterior, l.interior, l.radius);
    c.SetFont(dateFont);
    const std::string number = std::to_string(day + 1);
    if (p.DateShadow) {
      DrawShadowedText(c, number, text, Offset(text, -l.dateShadow, -l.dateShadow), format, shadowColour,
                       p.DateFontColour);
    } else {
      c.SetTextColour(p.DateFontColour);
      DrawTextIn(c, number, text, format);
    }
    DrawEvent(c, l, p, eventFont, cell, month, day);
    ++*column;
  }
  c.EndStage();
}

// The previous and next months in the two cells after the last day.
void DrawSmallMonths(Canvas& c, const MonthLayout& l, const MonthPage& p, int year, int month, bool showYear,
                     int32_t column, Length y) {
  c.SetFont(PageFont(l.pageH, l.smallFontH, p.CapFontBold, p.CapFontItal, p.CapFontName));
  c.SetBrush(SolidBrush(p.DateBackColour));
  c.SetPen(SolidPen(p.DateFrameColour));
  const struct {
    int year, month;
  } months[] = {{month == 0 ? PreviousYear(year) : year, month == 0 ? 11 : month - 1},
                {month == 11 ? NextYear(year) : year, month == 11 ? 0 : month + 1}};
  for (const auto& m : months) {
    if (column >= 7) {
      y += l.rowH;
      column = 0;
    }
    const Box cell = BoxOfSize(l.inner.left + column * l.colW, y, l.colW, l.rowH);
    const Box inside = DrawBox(c, cell, l.exterior, l.interior, l.radius);
    DrawSmallMonth(c, inside, m.year, m.month, showYear, p.DateFontColour, p.DateFontColour);
    ++column;
  }
  c.EndStage();
}

int DrawMonthPage(Canvas& c, const Rect& page, const CalendarHeader& h, const MonthPage& p, int month, bool printing,
                  bool pictureHalf, bool calendarHalf) {
  const MonthLayout l = Layout(page, p);
  const int year = CalendarYear(&h);
  if (!printing) DrawScreenFrame(c, page);
  // Both half fills split the page at half its bottom coordinate, not at its
  // middle; pages drawn away from the origin keep that.
  if (pictureHalf) {
    c.FillRect({page.left, page.top, page.right, page.bottom / 2}, p.PageBackgroundColour);
    DrawPicture(c, l, p, printing);
  }
  if (!calendarHalf) return 1;
  c.FillRect({page.left, page.bottom / 2, page.right, page.bottom}, p.PageBackgroundColour);
  DrawHeading(c, l, p, MonthTitle(month, year, h.ShowYearInPages != 0));
  DrawDayNames(c, l, p);
  DrawCaptions(c, l, p);
  int32_t column;
  Length y;
  DrawDates(c, l, p, year, month, &column, &y);
  if (p.HeadPrevNext) DrawSmallMonths(c, l, p, year, month, h.ShowYearInPages != 0, column, y);
  return 1;
}

}  // namespace

int DrawCalendarPage(Canvas& canvas, const Rect& pageRect, CalendarDocument document, int pageIndex, bool printing,
                     bool drawPictureHalf, bool drawCalendarHalf) {
  if (!PageFitsDevice(pageRect)) return 0;
  if (pageIndex == kCoverPageIndex)
    return DrawCoverPage(canvas, pageRect, document, printing, drawPictureHalf, drawCalendarHalf);
  if (pageIndex == kYearPageIndex)
    return DrawYearPage(canvas, pageRect, document, printing, drawPictureHalf, drawCalendarHalf);
  // The renderer works on copies: nothing it computes goes back into the document.
  CalendarHeader header;
  MonthPage page;
  if (!GetHeader(document, &header) || !GetMonthPage(document, pageIndex, &page)) return 0;
  TerminateTexts(&header);
  TerminateTexts(&page);
  return DrawMonthPage(canvas, pageRect, header, page, pageIndex, printing, drawPictureHalf, drawCalendarHalf);
}

Rect MonthPictureFitBox(const Rect& pageRect, const MonthPage& page) {
  const MonthLayout l = Layout(pageRect, page);
  Length shadow;
  return ToRect(FramedPictureFitBox(PictureOuterBox(l), l.pictureInset, PictureOf(page), &shadow));
}
