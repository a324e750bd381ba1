#include "pictures/picture_preview.h"

#include <algorithm>
#include <cstring>

#include "base/dib.h"
#include "pictures/resampler.h"

BlockHandle DibScaledByPercent(BlockHandle dib, int32_t percent) {
  BitmapInfoHeader h{};
  {
    BlockLock lock(dib);
    if (!lock || GlobalBlockSize(dib) < sizeof h) return 0;
    std::memcpy(&h, lock.bytes(), sizeof h);
  }
  const int64_t rows = h.biHeight < 0 ? -static_cast<int64_t>(h.biHeight) : h.biHeight;
  const int64_t w = std::max<int64_t>(1, int64_t(h.biWidth) * percent / 100), ht = std::max<int64_t>(1, rows * percent / 100);
  if (percent < 1 || w > 65536 || ht > 65536) return 0;
  return ResampleDib(dib, static_cast<int32_t>(w), static_cast<int32_t>(ht));
}

int32_t FitPercent(int32_t boxW, int32_t boxH, int32_t w, int32_t h) {
  if (w < 1 || h < 1) return 0;
  return static_cast<int32_t>(std::min(int64_t(boxW) * 100 / w, int64_t(boxH) * 100 / h));
}

std::string WithThousands(uint64_t n) {
  std::string digits = std::to_string(n), out;
  for (size_t i = 0; i < digits.size(); ++i) {
    if (i && (digits.size() - i) % 3 == 0) out += ',';
    out += digits[i];
  }
  return out;
}

std::string PictureFacts(int32_t width, int32_t height, uint16_t bitCount) {
  return "Width: " + std::to_string(width) + "\nDepth: " + std::to_string(height) +
         "\nColors: " + WithThousands(bitCount < 64 ? uint64_t(1) << bitCount : 0);
}
