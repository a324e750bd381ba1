#include "pictures/picture_kind.h"

#include "base/dib.h"

PictureKind ClassifyPicture(BlockHandle dib) {
  if (!DibBlockIsValid(dib)) return PictureKind::Palette;
  BlockLock lock(dib);
  if (!lock) return PictureKind::Palette;
  const auto& h = *lock.as<BitmapInfoHeader>();
  if (h.biBitCount == 1) return PictureKind::Monochrome;
  if (h.biBitCount > 8) return PictureKind::TrueColour;
  if (h.biBitCount < 8) return PictureKind::Palette;
  const RgbQuad* table = DibColourTable(lock.bytes());
  for (int i = 0; i < 256; ++i)
    if (table[i].rgbRed != i || table[i].rgbGreen != i || table[i].rgbBlue != i) return PictureKind::Palette;
  return PictureKind::GreyScale;
}
