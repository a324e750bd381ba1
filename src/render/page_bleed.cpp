// The bleed of a printed page: the backgrounds, and the cover's bleeding
// picture, continued past the page's edges for the paper to be cut inside.
#include <algorithm>
#include <vector>

#include "render/page_parts.h"
#include "render/page_renderer.h"

namespace {

// The band between `page` and `page` grown by `bleed`, within rows [top,
// bottom): up to four rectangles that do not overlap.
std::vector<Box> BandRows(const Box& page, Length bleed, Length top, Length bottom) {
  const Box outer{page.left - bleed, page.top - bleed, page.right + bleed, page.bottom + bleed};
  top = std::max(top, outer.top);
  bottom = std::min(bottom, outer.bottom);
  const Length insideTop = std::max(top, page.top), insideBottom = std::min(bottom, page.bottom);
  const Box parts[] = {{outer.left, top, outer.right, std::min(bottom, page.top)},
                       {outer.left, std::max(top, page.bottom), outer.right, bottom},
                       {outer.left, insideTop, page.left, insideBottom},
                       {page.right, insideTop, outer.right, insideBottom}};
  std::vector<Box> band;
  for (const Box& part : parts)
    if (Width(part) > 0 && Height(part) > 0) band.push_back(part);
  return band;
}

// The colour a page's background fills are drawn in.
bool BackgroundColour(CalendarDocument document, int pageIndex, const CalendarHeader& header, Colour* colour) {
  if (pageIndex == kCoverPageIndex) return *colour = header.CoverBackgroundColour, true;
  if (pageIndex == kYearPageIndex) return *colour = header.YagPageColour, true;
  MonthPage page;
  if (!GetMonthPage(document, pageIndex, &page)) return false;
  *colour = page.PageBackgroundColour;
  return true;
}

}  // namespace

int DrawPageBleed(Canvas& canvas, const Rect& pageRect, CalendarDocument document, int pageIndex, bool drawUpperHalf,
                  bool drawLowerHalf, int32_t bleed) {
  CalendarHeader header;
  Colour background;
  if (!PageFitsDevice(pageRect) || pageIndex < 0 || pageIndex > kCoverPageIndex || !GetHeader(document, &header) ||
      !BackgroundColour(document, pageIndex, header, &background))
    return 0;
  TerminateTexts(&header);
  const Box page = ToBox(pageRect);
  const Length b = std::clamp<Length>(bleed, 0, kDeviceLimit / 2);
  const Length middle = page.top + Height(page) / 2;
  if (drawUpperHalf)
    for (const Box& part : BandRows(page, b, page.top - b, middle)) canvas.FillRect(ToRect(part), background);
  if (drawLowerHalf) {
    const std::vector<Box> band = BandRows(page, b, middle, page.bottom + b);
    for (const Box& part : band) canvas.FillRect(ToRect(part), background);
    // The cover's picture lies in its lower half.
    if (pageIndex == kCoverPageIndex) DrawCoverPictureBleed(canvas, pageRect, header, band);
  }
  return 1;
}
