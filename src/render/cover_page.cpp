// The cover: its face is the lower half, a picture below a gutter with the
// title over it; the upper half is background only.
#include <algorithm>
#include <string>

#include "render/page_parts.h"
#include "render/page_renderer.h"
#include "render/primitives.h"

namespace {

// Draws the cover picture and returns the bottom its box was left with.
Length DrawCoverPicture(Canvas& c, const CalendarHeader& h, const Box& page, Length lowerTop, Length pad,
                        Length gutter, bool printing) {
  int32_t pictureW, pictureH;
  if (!h.CoverPictureShowPicture || !PictureSize(h.CoverPicture, &pictureW, &pictureH)) return page.bottom;
  Box box{page.left, Bounded(lowerTop + gutter), page.right, page.bottom};
  const bool bleed = h.CoverPictureBleed != 0;
  Length shadow = 0;
  if (bleed) {
    c.Clip(ToRect(box));
  } else {
    box = Deflated(box, pad);
    if (h.CoverPictureDropShadow) shadow = Percent(std::min(Width(box), Height(box)), h.CoverPictureShadowOffset);
    box.right -= shadow;
    box.bottom -= shadow;
  }
  // A bleeding picture covers the whole box and is cropped; otherwise it fits.
  const PictureFit fit = FitPicture(box, pictureW, pictureH, bleed);
  Length x, y;
  PlacePicture(box, fit, h.CoverPicturePlacement, &x, &y);
  c.SaveState();
  c.SetOrigin(Device(box.left + x), Device(box.top + y));
  if (!bleed && h.CoverPictureDropShadow) {
    // The cover's shadow is always a hard one.
    c.SetPen(kNullPen);
    c.SetBrush(SolidBrush(Mix(h.CoverPictureFrameColour, h.CoverBackgroundColour)));
    c.Rectangle(ToRect({shadow, shadow, fit.width + shadow, fit.height + shadow}));
  }
  c.DrawPicture(h.CoverPicture, Device(fit.width), Device(fit.height), printing);
  if (!bleed && h.CoverPictureShowFrame) {
    c.SetPen(SolidPen(h.CoverPictureFrameColour));
    c.SetBrush(kNullBrush);
    c.Rectangle(ToRect({0, 0, fit.width, fit.height}));
  }
  c.RestoreState();
  if (bleed) c.Unclip();
  c.EndStage();
  return box.bottom;
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
  const Length pad = Percent(Width(page), h.CoverPictureExteriorPadding);
  const Length gutter = Percent(Height(page), h.CoverPictureGutter);
  const Length titleH = Percent((Height(page) - 2 * pad) / 2, h.CoverFontSize);
  const Length titleShadow = Percent(titleH, h.CoverPictureShadowOffset);
  if (drawUpperHalf)
    canvas.FillRect({pageRect.left, pageRect.top, pageRect.right, pageRect.bottom / 2}, h.CoverBackgroundColour);
  if (!drawLowerHalf) return 1;
  const Length lowerTop = page.top + Height(page) / 2;
  canvas.FillRect(ToRect({page.left, lowerTop, page.right, page.bottom}), h.CoverBackgroundColour);
  // A cover without a picture block shows no title either.
  if (!h.CoverPicture) return 1;
  const Length bottom = DrawCoverPicture(canvas, h, page, lowerTop, pad, gutter, printing);
  if (h.CoverTitle[0]) DrawCoverTitle(canvas, h, page, lowerTop, gutter, bottom, titleH, titleShadow);
  return 1;
}
