// What kind of picture a Dib is, as far as printing it well goes.
#pragma once
#include "base/global_block.h"

enum class PictureKind {
  Monochrome,  // 1 bit per pixel
  TrueColour,  // more than 8 bits per pixel
  GreyScale,   // 8 bits whose 256 table entries are each (i, i, i)
  Palette,     // anything else, and a picture that cannot be read
};

PictureKind ClassifyPicture(BlockHandle dib);
// Monochrome and palette pictures may not print well: the user is warned.
inline bool WantsPaletteWarning(PictureKind kind) {
  return kind == PictureKind::Monochrome || kind == PictureKind::Palette;
}

// What the program says when a picture file cannot be read, and its warning
// about palette pictures.
constexpr const char* kImageLoadFailedMessage =
    "There has been an error loading the image you requested. Please ensure that the image file has not been damaged.";
constexpr const char* kPaletteWarningMessage =
    "The image you have selected has palette color. It may not reproduce well on Quernal's printed pages. For the "
    "best results, use true-color or grey-scale images.";
