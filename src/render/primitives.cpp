#include "render/primitives.h"

#include <cstring>

#include "base/dib.h"

Colour Mix(Colour a, Colour b) {
  return RGBColour((RedOf(a) + RedOf(b)) >> 1, (GreenOf(a) + GreenOf(b)) >> 1, (BlueOf(a) + BlueOf(b)) >> 1);
}

Colour BlendColour(Colour a, Colour b, int t) {
  auto channel = [t](uint32_t x, uint32_t y) { return ((x * t + y * (255 - t)) / 255) & 255; };
  return RGBColour(channel(RedOf(a), RedOf(b)), channel(GreenOf(a), GreenOf(b)), channel(BlueOf(a), BlueOf(b)));
}

int DrawSoftShadow(Canvas& canvas, int32_t left, int32_t top, int32_t right, int32_t bottom, Colour shadowColour,
                   Colour backgroundColour, int32_t softnessPercent) {
  const int32_t width = right - left, height = bottom - top;
  const int32_t n = PercentOf(width, softnessPercent);
  if (n < 1) return 1;
  canvas.SetPen(kNullPen);
  // A softness out of a damaged file must not keep the painter busy for ever;
  // real shadows stay far below this many rings even on a printer.
  const int32_t rings = n < 65536 ? n : 65536;
  for (int32_t i = 0; i < rings; ++i) {
    int t = static_cast<int>(static_cast<double>(i) / n * 255);
    canvas.SetBrush(SolidBrush(BlendColour(shadowColour, backgroundColour, t)));
    canvas.RoundRect({n / 2 + i, n / 2 + i, width + n - i, height + n - i}, n, n);
  }
  return 1;
}

int DibPaletteToTriplets(const BitmapInfoHeader* dibHeader, uint8_t* triplets) {
  std::memset(triplets, 0, 768);
  uint32_t entries = DibColourTableEntries(dibHeader->biBitCount);
  const RgbQuad* table =
      reinterpret_cast<const RgbQuad*>(reinterpret_cast<const uint8_t*>(dibHeader) + dibHeader->biSize);
  for (uint32_t i = 0; i < entries; ++i) {
    triplets[i * 3] = table[i].rgbRed;
    triplets[i * 3 + 1] = table[i].rgbGreen;
    triplets[i * 3 + 2] = table[i].rgbBlue;
  }
  return static_cast<int>(entries);
}
