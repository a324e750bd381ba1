// The cover: its face is the lower half, a picture below a gutter with the
// title over it; the upper half is background only.
#include <algorithm>
#include <string>

#include "render/page_parts.h"
#include "render/page_renderer.h"
#include "render/primitives.h"

namespace {

// Draws the cover picture and returns the bottom its box was left with.
int32_t DrawCoverPicture(Canvas& c, const CalendarHeader& h, const Rect& page, int32_t lowerTop, int32_t pad,
                         int32_t gutter, bool printing) {
  int32_t pictureW, pictureH;
  if (!h.CoverPictureShowPicture || !PictureSize(h.CoverPicture, &pictureW, &pictureH)) return page.bottom;
  Rect box{page.left, lowerTop + gutter, page.right, page.bottom};
  const bool bleed = h.CoverPictureBleed != 0;
  int32_t shadow = 0;
  if (bleed) {
    c.Clip(box);
  } else {
    box = Deflated(box, pad);
    if (h.CoverPictureDropShadow) shadow = PercentOf(std::min(Width(box), Height(box)), h.CoverPictureShadowOffset);
    box.right -= shadow;
    box.bottom -= shadow;
  }
  // A bleeding picture covers the whole box and is cropped; otherwise it fits.
  const PictureFit fit = FitPicture(box, pictureW, pictureH, bleed);
  int32_t x, y;
  PlacePicture(box, fit, h.CoverPicturePlacement, &x, &y);
  c.SaveState();
  c.SetOrigin(box.left + x, box.top + y);
  if (!bleed && h.CoverPictureDropShadow) {
    // The cover's shadow is always a hard one.
    c.SetPen(kNullPen);
    c.SetBrush(SolidBrush(Mix(h.CoverPictureFrameColour, h.CoverBackgroundColour)));
    c.Rectangle({shadow, shadow, fit.width + shadow, fit.height + shadow});
  }
  c.DrawPicture(h.CoverPicture, fit.width, fit.height, printing);
  if (!bleed && h.CoverPictureShowFrame) {
    c.SetPen(SolidPen(h.CoverPictureFrameColour));
    c.SetBrush(kNullBrush);
    c.Rectangle({0, 0, fit.width, fit.height});
  }
  c.RestoreState();
  if (bleed) c.Unclip();
  c.EndStage();
  return box.bottom;
}

void DrawCoverTitle(Canvas& c, const CalendarHeader& h, const Rect& page, int32_t lowerTop, int32_t gutter,
                    int32_t bottom, int32_t titleH, int32_t titleShadow) {
  c.SetFont({titleH, h.CoverFontBold, h.CoverFontItal, h.CoverFontName});
  Rect r{page.left, lowerTop + gutter, page.right, bottom};
  const uint32_t format = static_cast<uint32_t>(h.CoverFontPlacement) | kDtSingleLine | kDtNoPrefix;
  if (h.CoverPictureDropShadow) {
    r.bottom += titleShadow;
    r.right -= titleShadow;
    DrawShadowedText(c, h.CoverTitle, Offset(r, titleShadow, titleShadow), r, format,
                     Mix(h.CoverPictureFrameColour, h.CoverBackgroundColour), h.CoverFontColour);
  } else {
    c.SetTextColour(h.CoverFontColour);
    c.DrawText(h.CoverTitle, &r, format);
  }
  c.EndStage();
}

}  // namespace

int DrawCoverPage(Canvas& canvas, const Rect& pageRect, CalendarDocument document, bool printing, bool drawUpperHalf,
                  bool drawLowerHalf) {
  CalendarHeader h;
  if (!GetHeader(document, &h)) return 0;
  TerminateTexts(&h);
  if (!printing) DrawScreenFrame(canvas, pageRect);
  const int32_t pad = PercentOf(Width(pageRect), h.CoverPictureExteriorPadding);
  const int32_t gutter = PercentOf(Height(pageRect), h.CoverPictureGutter);
  const int32_t titleH = PercentOf((Height(pageRect) - 2 * pad) / 2, h.CoverFontSize);
  const int32_t titleShadow = PercentOf(titleH, h.CoverPictureShadowOffset);
  if (drawUpperHalf)
    canvas.FillRect({pageRect.left, pageRect.top, pageRect.right, pageRect.bottom / 2}, h.CoverBackgroundColour);
  if (!drawLowerHalf) return 1;
  const int32_t lowerTop = pageRect.top + Height(pageRect) / 2;
  canvas.FillRect({pageRect.left, lowerTop, pageRect.right, pageRect.bottom}, h.CoverBackgroundColour);
  // A cover without a picture block shows no title either.
  if (!h.CoverPicture) return 1;
  const int32_t bottom = DrawCoverPicture(canvas, h, pageRect, lowerTop, pad, gutter, printing);
  if (h.CoverTitle[0]) DrawCoverTitle(canvas, h, pageRect, lowerTop, gutter, bottom, titleH, titleShadow);
  return 1;
}
