#include "tools/sample/sample_art.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "base/dib.h"

namespace {

struct Rgb {
  double r, g, b;
};

Rgb Mix(Rgb a, Rgb b, double t) {
  t = std::clamp(t, 0.0, 1.0);
  return {a.r + (b.r - a.r) * t, a.g + (b.g - a.g) * t, a.b + (b.b - a.b) * t};
}

Rgb Hex(uint32_t rgb) { return {double(rgb >> 16), double(rgb >> 8 & 255), double(rgb & 255)}; }

// A month's light and land: sky from top to horizon, the sun (or moon), and
// three ridges from far to near.
struct Scene {
  const char* title;
  uint32_t skyTop, skyHorizon, sun, ridges[3];
  double sunX, sunY, sunRadius;  // in picture widths / heights
  bool snow, stars, trees, water;
};

const Scene kScenes[kSampleScenes] = {
    {"Frost on the high fells", 0x5B7FB0, 0xE8EEF5, 0xFFF6E0, {0x9AAAC4, 0x6F83A6, 0x3E4F70}, .72, .30, .05, true, false, true, false},
    {"Blue hour, late snow", 0x1E2A55, 0x9C8FB8, 0xF5F0FF, {0x6A6A9A, 0x484878, 0x26284A}, .25, .22, .03, true, true, true, false},
    {"The thaw comes to the valley", 0x6FA3D6, 0xDDEBF2, 0xFFF3C4, {0x94B39A, 0x6B9477, 0x3F6B4E}, .80, .25, .05, false, false, true, true},
    {"April showers over the downs", 0x7F93A8, 0xD4DCE0, 0xFFFFFF, {0x8FB08A, 0x5F9160, 0x36693A}, .30, .35, .04, false, false, false, true},
    {"Blossom on the south slope", 0x4F9BE0, 0xCFE8F7, 0xFFF8D0, {0xA3C98F, 0x75B06A, 0x4A8A4A}, .65, .18, .05, false, false, true, false},
    {"Midsummer, long light", 0x2F86D8, 0xBFE3F5, 0xFFF9C0, {0x8CC07A, 0x5FA35A, 0x2F7A3C}, .50, .15, .06, false, false, true, true},
    {"Heat haze on the moor", 0x4C95CF, 0xF2E6C2, 0xFFF2A8, {0xB8B27A, 0x98A05C, 0x6A7A3A}, .20, .20, .06, false, false, false, false},
    {"Harvest evening", 0x3A5A9C, 0xF4B96B, 0xFFD27A, {0xC9A060, 0xA87D3F, 0x6E5228}, .55, .55, .07, false, false, false, true},
    {"Mist in the beech woods", 0x8FA0AE, 0xE9E2D2, 0xFFF1D8, {0xB8AE96, 0x9A8660, 0x6A5432}, .35, .40, .05, false, false, true, false},
    {"October fire", 0x2B4C7E, 0xF08A4B, 0xFFC46B, {0xC8723A, 0xA04A26, 0x5E2A1A}, .70, .60, .08, false, false, true, true},
    {"November rain moving east", 0x4D5A66, 0xA9B2B5, 0xE8E8E8, {0x7A8580, 0x56635C, 0x323C37}, .40, .45, .03, false, false, true, false},
    {"The longest night", 0x0B1330, 0x3A3F72, 0xF4F1E0, {0x3A4168, 0x262C4C, 0x12162C}, .78, .20, .035, true, true, true, false},
    {"A year in the hills", 0x3D78C0, 0xF6D8A8, 0xFFE7A0, {0x7E9DB0, 0x4F7A78, 0x284A45}, .50, .42, .09, false, false, true, true},
};

// Cheap deterministic noise in 0..1.
double Hash(uint32_t n) {
  n = (n << 13) ^ n;
  return ((n * (n * n * 15731u + 789221u) + 1376312589u) & 0x7FFFFFFF) / 2147483647.0;
}

// The height (0 top .. 1 bottom) of ridge `layer` at x in 0..1: a few waves
// of falling size, nearer ridges lower and rougher.
double RidgeHeight(int scene, int layer, double x) {
  const double base = 0.52 + 0.12 * layer;
  double h = 0;
  for (int k = 1; k <= 5; ++k) {
    const double phase = Hash(scene * 97 + layer * 13 + k) * 6.283;
    h += std::sin(x * (k * 2.3 + layer) * 3.1416 + phase) / (k * (1.6 - 0.25 * layer));
  }
  return base + 0.06 * h;
}

Rgb Pixel(const Scene& s, int index, double x, double y, const std::vector<double>& ridges, int width) {
  // Sky, with the sun's glow.
  Rgb c = Mix(Hex(s.skyTop), Hex(s.skyHorizon), std::pow(y / 0.6, 1.3));
  const double dx = (x - s.sunX) * 1.5, dy = y - s.sunY, d = std::sqrt(dx * dx + dy * dy);
  c = Mix(c, Hex(s.sun), 0.55 * std::exp(-d * 6));
  if (d < s.sunRadius) c = Mix(c, Hex(s.sun), std::min(1.0, (s.sunRadius - d) * 400));
  if (s.stars && y < 0.45) {
    const uint32_t cell = static_cast<uint32_t>(x * 400) * 7919u + static_cast<uint32_t>(y * 300) * 104729u;
    if (Hash(cell) > 0.9965) c = Mix(c, Hex(0xFFFFFF), 0.8 * (1 - y / 0.45));
  }
  // The ridges, far to near; each fades toward the sky's colour with distance.
  const int column = std::min(width - 1, static_cast<int>(x * width));
  for (int layer = 0; layer < 3; ++layer) {
    const double top = ridges[layer * width + column];
    if (y < top) continue;
    Rgb land = Hex(s.ridges[layer]);
    if (s.snow) land = Mix(land, Hex(0xF4F7FB), layer == 2 ? 0.55 : 0.75 - 0.2 * (y - top) * 6);
    land = Mix(land, Hex(s.skyHorizon), 0.35 * (2 - layer) / 2.0);
    c = Mix(land, Mix(land, Hex(0x000000), 0.25), (y - top) * 2.5);
  }
  // Trees stand on the nearest ridge as dark cones.
  for (int t = 0; s.trees && t < 7; ++t) {
    const double tx = (t + 0.5) / 7 + (Hash(index * 31 + t) - 0.5) * 0.1;
    const double foot = RidgeHeight(index, 2, tx) + 0.03, size = 0.08 + 0.08 * Hash(index * 7 + t);
    if (y > foot - size && y < foot && std::fabs(x - tx) * 1.5 < 0.22 * (y - (foot - size)))
      c = Mix(Hex(s.ridges[2]), Hex(0x0A140C), s.snow ? 0.35 : 0.6);
  }
  // Still water in the foreground mirrors the sky.
  if (s.water && y > 0.9) c = Mix(Mix(Hex(s.skyHorizon), Hex(s.skyTop), (y - 0.9) * 5), c, 0.25 + 0.05 * std::sin(y * 900));
  return c;
}

}  // namespace

const char* SampleSceneTitle(int index) { return kScenes[index].title; }

BlockHandle SampleScene(int index, int32_t width, int32_t height) {
  const Scene& s = kScenes[index];
  BlockHandle dib = DibCreate(width, height, 24);
  BlockLock lock(dib);
  if (!lock) return dib;
  std::vector<double> ridges(3 * static_cast<size_t>(width));
  for (int layer = 0; layer < 3; ++layer)
    for (int32_t x = 0; x < width; ++x) ridges[layer * width + x] = RidgeHeight(index, layer, (x + 0.5) / width);
  uint8_t* bits = DibBits(lock.bytes());
  const uint64_t stride = DibRowStride(width, 24);
  for (int32_t row = 0; row < height; ++row) {
    // Dib rows run from the bottom up.
    uint8_t* out = bits + (height - 1 - row) * stride;
    const double y = (row + 0.5) / height;
    for (int32_t x = 0; x < width; ++x) {
      const Rgb c = Pixel(s, index, (x + 0.5) / width, y, ridges, width);
      // A little grain keeps the gradients from banding in print.
      const double grain = Hash(static_cast<uint32_t>(row) * 65537u + x) > 0.5 ? 0.5 : 0;
      out[x * 3] = static_cast<uint8_t>(std::clamp(c.b + grain, 0.0, 255.0));
      out[x * 3 + 1] = static_cast<uint8_t>(std::clamp(c.g + grain, 0.0, 255.0));
      out[x * 3 + 2] = static_cast<uint8_t>(std::clamp(c.r + grain, 0.0, 255.0));
    }
  }
  return dib;
}
