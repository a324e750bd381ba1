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

namespace {
// The blend weight of ring i of n.
int RingWeight(Length i, Length n) { return static_cast<int>(static_cast<double>(i) / n * 255); }

// The first ring of weight t or more (weights never fall from ring to ring).
Length FirstRingOfWeight(int t, Length n) {
  Length i = t * n / 255;  // within a ring or two of it
  while (i > 0 && RingWeight(i - 1, n) >= t) --i;
  while (i < n && RingWeight(i, n) < t) ++i;
  return i;
}
}  // namespace

int DrawSoftShadow(Canvas& canvas, Length left, Length top, Length right, Length bottom, Colour shadowColour,
                   Colour backgroundColour, int32_t softnessPercent) {
  const Length width = right - left, height = bottom - top;
  const Length n = Percent(width, softnessPercent);
  if (n < 1) return 1;
  canvas.SetPen(kNullPen);
  auto ring = [&](Length i) {
    canvas.SetBrush(SolidBrush(BlendColour(shadowColour, backgroundColour, RingWeight(i, n))));
    canvas.RoundRect(ToRect({n / 2 + i, n / 2 + i, width + n - i, height + n - i}), Device(n), Device(n));
  };
  if (n <= 255) {
    // Every ring has a weight of its own.
    for (Length i = 0; i < n; ++i) ring(i);
    return 1;
  }
  for (int t = 0; t <= 255; ++t) {
    const Length i = FirstRingOfWeight(t, n);
    if (i < n && RingWeight(i, n) == t) ring(i);
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
