// The cover: its face is the lower half, a picture below a gutter with the
// title over it; the upper half is background only.
#include <algorithm>
#include <string>
#include <vector>

#include "render/page_parts.h"
#include "render/page_renderer.h"
#include "render/picture_box.h"
#include "render/primitives.h"

namespace {

// The picture's box before padding: the lower half below the gutter.
Box CoverPictureBox(const Box& page, Length lowerTop, Length gutter) {
  return {page.left, Bounded(lowerTop + gutter), page.right, page.bottom};
}
Length CoverGutter(const Box& page, const CalendarHeader& h) { return Percent(Height(page), h.CoverPictureGutter); }
Length CoverLowerTop(const Box& page) { return page.top + Height(page) / 2; }
Length CoverPad(const Box& page, const CalendarHeader& h) { return Percent(Width(page), h.CoverPictureExteriorPadding); }

FramedPicture CoverPictureOf(const CalendarHeader& h) {
  return {h.CoverPicture,           h.CoverPictureShowPicture != 0, h.CoverPicturePlacement,
          h.CoverPictureDropShadow != 0, h.CoverPictureShadowOffset, 0,
          h.CoverPictureShowFrame != 0,  h.CoverPictureFrameColour, h.CoverBackgroundColour,
          h.CoverPictureBleed != 0};
}

// Draws the cover picture and returns the bottom its box was left with. The
// cover's shadow is always a hard one.
Length DrawCoverPicture(Canvas& c, const CalendarHeader& h, const Box& page, Length lowerTop, Length pad,
                        Length gutter, bool printing) {
  Box box = CoverPictureBox(page, lowerTop, gutter);
  return DrawFramedPicture(c, &box, pad, CoverPictureOf(h), printing) ? box.bottom : page.bottom;
}

void DrawCoverTitle(Canvas& c, const CalendarHeader& h, const Box& page, Length lowerTop, Length gutter,
                    Length bottom, Length titleH, Length titleShadow) {
  c.SetFont(PageFont(Height(page), titleH, h.CoverFontBold, h.CoverFontItal, h.CoverFontName));
  Box r{page.left, Bounded(lowerTop + gutter), page.right, bottom};
  const uint32_t format = static_cast<uint32_t>(h.CoverFontPlacement) | kDtSingleLine | kDtNoPrefix;
  if (h.CoverPictureDropShadow) {
    r.bottom += titleShadow;
    r.right -= titleShadow;
    DrawShadowedText(c, h.CoverTitle, Offset(r, titleShadow, titleShadow), r, format,
                     Mix(h.CoverPictureFrameColour, h.CoverBackgroundColour), h.CoverFontColour);
  } else {
    c.SetTextColour(h.CoverFontColour);
    DrawTextIn(c, h.CoverTitle, r, format);
  }
  c.EndStage();
}

}  // namespace

int DrawCoverPage(Canvas& canvas, const Rect& pageRect, CalendarDocument document, bool printing, bool drawUpperHalf,
                  bool drawLowerHalf) {
  CalendarHeader h;
  if (!PageFitsDevice(pageRect) || !GetHeader(document, &h)) return 0;
  TerminateTexts(&h);
  if (!printing) DrawScreenFrame(canvas, pageRect);
  const Box page = ToBox(pageRect);
  const Length pad = CoverPad(page, h);
  const Length gutter = CoverGutter(page, h);
  const Length titleH = Percent((Height(page) - 2 * pad) / 2, h.CoverFontSize);
  const Length titleShadow = Percent(titleH, h.CoverPictureShadowOffset);
  if (drawUpperHalf)
    canvas.FillRect({pageRect.left, pageRect.top, pageRect.right, pageRect.bottom / 2}, h.CoverBackgroundColour);
  if (!drawLowerHalf) return 1;
  const Length lowerTop = CoverLowerTop(page);
  canvas.FillRect(ToRect({page.left, lowerTop, page.right, page.bottom}), h.CoverBackgroundColour);
  // A cover without a picture block shows no title either.
  if (!h.CoverPicture) return 1;
  const Length bottom = DrawCoverPicture(canvas, h, page, lowerTop, pad, gutter, printing);
  if (h.CoverTitle[0]) DrawCoverTitle(canvas, h, page, lowerTop, gutter, bottom, titleH, titleShadow);
  return 1;
}

void DrawCoverPictureBleed(Canvas& canvas, const Rect& pageRect, const CalendarHeader& h, const std::vector<Box>& band) {
  int32_t pictureW, pictureH;
  if (!h.CoverPicture || !h.CoverPictureBleed || !h.CoverPictureShowPicture ||
      !PictureSize(h.CoverPicture, &pictureW, &pictureH))
    return;
  // Placed exactly as on the page, so the band continues what the page shows.
  const Box page = ToBox(pageRect);
  const Box box = CoverPictureBox(page, CoverLowerTop(page), CoverGutter(page, h));
  const PictureFit fit = FitPicture(box, pictureW, pictureH, true);
  Length x, y;
  PlacePicture(box, fit, h.CoverPicturePlacement, &x, &y);
  // Past each edge of the page that the box reaches, the box runs on.
  Box reach = box;
  if (box.left <= page.left) reach.left = -kLayoutLimit;
  if (box.top <= page.top) reach.top = -kLayoutLimit;
  if (box.right >= page.right) reach.right = kLayoutLimit;
  if (box.bottom >= page.bottom) reach.bottom = kLayoutLimit;
  const Length originX = box.left + x, originY = box.top + y;
  for (const Box& part : band) {
    const Box inside{std::max(part.left, reach.left), std::max(part.top, reach.top),
                     std::min(part.right, reach.right), std::min(part.bottom, reach.bottom)};
    if (Width(inside) <= 0 || Height(inside) <= 0) continue;
    canvas.SaveState();
    canvas.SetOrigin(Device(originX), Device(originY));
    canvas.Clip(ToRect(Offset(inside, -originX, -originY)));
    canvas.DrawPictureExtended(h.CoverPicture, Device(fit.width), Device(fit.height), true);
    canvas.RestoreState();
  }
}

Rect CoverPictureFitBox(const Rect& pageRect, const CalendarHeader& h) {
  const Box page = ToBox(pageRect);
  Length shadow;
  return ToRect(FramedPictureFitBox(CoverPictureBox(page, CoverLowerTop(page), CoverGutter(page, h)), CoverPad(page, h),
                                    CoverPictureOf(h), &shadow));
}
