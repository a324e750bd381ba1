// Pieces the month, year and cover pages share.
#pragma once
#include <string>

#include "base/geometry.h"
#include "base/global_block.h"
#include "render/canvas.h"

// "%s %d" of the month's name and the year, or the name alone.
std::string MonthTitle(int month, int year, bool withYear);

// Draws the box of `cell` shrunk by `exterior` with the current pen and brush,
// and returns the text rectangle: the box shrunk further by `interior`.
Rect DrawBox(Canvas& canvas, const Rect& cell, int32_t exterior, int32_t interior, int32_t radius);

// The text in `shadowColour` at `shadowRect`, then in `textColour` at `textRect`.
void DrawShadowedText(Canvas& canvas, const std::string& text, Rect shadowRect, Rect textRect, uint32_t format,
                      Colour shadowColour, Colour textColour);

// A month in small: a title row across the cell, a row of day initials and
// the dates, in cells of a seventh of the width and an eighth of the height.
void DrawSmallMonth(Canvas& canvas, const Rect& cell, int year, int month, bool withYear, Colour titleColour,
                    Colour bodyColour);

// The width and height of a picture that can be drawn, or false (no block,
// not a usable Dib, or a zero side).
bool PictureSize(BlockHandle dib, int32_t* width, int32_t* height);

// The scale in thousandths at which a picture fits `box` (the smaller
// quotient) or covers it (the larger), and the drawn size.
struct PictureFit {
  int32_t scale, width, height;
};
PictureFit FitPicture(const Rect& box, int32_t pictureWidth, int32_t pictureHeight, bool cover);
// Where the drawn picture's corner goes inside `box` for a placement code:
// 0 top left, 2 top right, 8 bottom left, 10 bottom right, else centred.
void PlacePicture(const Rect& box, const PictureFit& fit, int32_t placement, int32_t* x, int32_t* y);

// The page frame of the screen view: one pixel outside the page.
void DrawScreenFrame(Canvas& canvas, const Rect& pageRect);
