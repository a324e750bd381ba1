// Pieces the month, year and cover pages share.
#pragma once
#include <string>
#include <vector>

#include "base/geometry.h"
#include "base/global_block.h"
#include "calendar/calendar_model.h"
#include "render/canvas.h"
#include "render/layout.h"

// "%s %d" of the month's name and the year, or the name alone.
std::string MonthTitle(int month, int year, bool withYear);

// Draws the box of `cell` shrunk by `exterior` with the current pen and brush,
// and returns the text rectangle: the box shrunk further by `interior`.
Box DrawBox(Canvas& canvas, const Box& cell, Length exterior, Length interior, Length radius);

// The text in `shadowColour` at `shadowRect`, then in `textColour` at `textRect`.
void DrawShadowedText(Canvas& canvas, const std::string& text, const Box& shadowRect, const Box& textRect,
                      uint32_t format, Colour shadowColour, Colour textColour);
// Draws `text` in `box` with the current font and text colour.
void DrawTextIn(Canvas& canvas, const std::string& text, const Box& box, uint32_t format);

// A month in small: a title row across the cell, a row of day initials and
// the dates, in cells of a seventh of the width and an eighth of the height.
void DrawSmallMonth(Canvas& canvas, const Box& cell, int year, int month, bool withYear, Colour titleColour,
                    Colour bodyColour);
// The year before and after `year`, stopping at the ends of the int range
// (a year from a damaged file can be anything).
int PreviousYear(int year);
int NextYear(int year);

// A font for a page of height `pageHeight`: no font handed to GDI or Cairo is
// taller than the page (far above any real design), so a damaged record
// cannot ask for glyphs of gigabytes.
FontSpec PageFont(Length pageHeight, Length height, int32_t weight, int32_t italic, const char* face);

// The width and height of a picture that can be drawn, or false (no block,
// not a usable Dib, or a zero side).
bool PictureSize(BlockHandle dib, int32_t* width, int32_t* height);

// The scale in thousandths at which a picture fits `box` (the smaller
// quotient) or covers it (the larger), and the drawn size.
struct PictureFit {
  Length scale, width, height;
};
PictureFit FitPicture(const Box& box, int32_t pictureWidth, int32_t pictureHeight, bool cover);
// Where the drawn picture's corner goes inside `box` for a placement code:
// 0 top left, 2 top right, 8 bottom left, 10 bottom right, else centred.
void PlacePicture(const Box& box, const PictureFit& fit, int32_t placement, Length* x, Length* y);

// A page's picture as its record describes it: the month page's or the cover's.
struct FramedPicture {
  BlockHandle dib;
  bool show;
  int32_t placement;
  bool dropShadow;
  int32_t shadowOffset;    // percent of the box's shorter side
  int32_t shadowSoftness;  // 0: a hard shadow
  bool showFrame;
  Colour frameColour;
  Colour background;  // the page's, which the shadow is mixed with
  bool bleed;         // covers its box, cropped, without padding, shadow or frame
};
// The box `picture` is fitted into (or, bleeding, covers) in `box`: padded
// by `pad` and short of the shadow's offset, which `shadow` receives.
Box FramedPictureFitBox(const Box& box, Length pad, const FramedPicture& picture, Length* shadow);
// Draws `picture` in `*box`: padded by `pad` (or clipped to it when it
// bleeds), room made for the shadow, fitted and placed, then the shadow, the
// picture and the frame. *box receives the box the picture was placed in;
// false, with nothing drawn, for a picture not shown or not drawable.
bool DrawFramedPicture(Canvas& canvas, Box* box, Length pad, const FramedPicture& picture, bool printing);

// The page frame of the screen view: one pixel outside the page.
void DrawScreenFrame(Canvas& canvas, const Rect& pageRect);

// The cover's bleeding picture in the parts of the bleed band `band` that its
// box reaches, placed as on the page and its edges repeated beyond it.
void DrawCoverPictureBleed(Canvas& canvas, const Rect& pageRect, const CalendarHeader& header,
                           const std::vector<Box>& band);
