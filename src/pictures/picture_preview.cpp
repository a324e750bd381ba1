#include "pictures/picture_preview.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "base/dib.h"
#include "pictures/picture_reduce.h"

namespace {

// How much of source cell [i, i + 1) the target cell [t, t + 1) covers, all
// measured in units of 1/(source * target): target cell t spans source
// [t * src, (t + 1) * src) / dst.
struct Span {
  int64_t first, last;  // source cells touched
};
Span Cover(int64_t t, int64_t src, int64_t dst) {
  return {t * src / dst, ((t + 1) * src - 1) / dst};
}
int64_t Overlap(int64_t i, int64_t t, int64_t src, int64_t dst) {
  const int64_t lo = std::max(i * dst, t * src), hi = std::min((i + 1) * dst, (t + 1) * src);
  return hi > lo ? hi - lo : 0;
}

}  // namespace

// Source row `i` spread across the new columns: each holds the row's colour
// sums weighted by how much of each source pixel it covers.
void Across(const std::vector<uint8_t>& row, int64_t sw, int32_t width, std::vector<uint64_t>* out) {
  for (int64_t t = 0; t < width; ++t) {
    const Span s = Cover(t, sw, width);
    uint64_t c[3] = {0, 0, 0};
    for (int64_t i = s.first; i <= s.last; ++i) {
      const uint64_t w = static_cast<uint64_t>(Overlap(i, t, sw, width));
      for (int k = 0; k < 3; ++k) c[k] += w * row[static_cast<size_t>(i) * 3 + k];
    }
    for (int k = 0; k < 3; ++k) (*out)[static_cast<size_t>(t) * 3 + k] = c[k];
  }
}

BlockHandle DibResampled(BlockHandle source, int32_t width, int32_t height) {
  if (width < 1 || height < 1 || !DibBlockIsValid(source)) return 0;
  BlockHandle result = DibCreate(width, height, 24);
  if (!result) return 0;
  BlockLock in(source), out(result);
  if (!in || !out) return GlobalBlockFree(result), 0;
  const auto& h = *in.as<BitmapInfoHeader>();
  const int64_t sw = h.biWidth, sh = h.biHeight < 0 ? -static_cast<int64_t>(h.biHeight) : h.biHeight;
  const size_t n = static_cast<size_t>(width) * 3;
  std::vector<uint8_t> row(static_cast<size_t>(sw) * 3);
  std::vector<uint64_t> across(n), sums(n);
  int64_t spread = -1;  // the source row `across` holds; rows come in order
  uint8_t* bits = DibBits(out.bytes());
  const uint64_t stride = DibRowStride(width, 24), whole = static_cast<uint64_t>(sw * sh);
  for (int64_t t = 0; t < height; ++t) {
    std::fill(sums.begin(), sums.end(), 0);
    const Span s = Cover(t, sh, height);
    for (int64_t i = s.first; i <= s.last; ++i) {
      if (i != spread) {
        DibRowBgr(in.bytes(), static_cast<int32_t>(i), row.data());
        Across(row, sw, width, &across);
        spread = i;
      }
      const uint64_t share = static_cast<uint64_t>(Overlap(i, t, sh, height));
      for (size_t k = 0; k < n; ++k) sums[k] += share * across[k];
    }
    uint8_t* line = bits + stride * static_cast<uint64_t>(height - 1 - t);
    for (size_t k = 0; k < n; ++k) line[k] = static_cast<uint8_t>((sums[k] + whole / 2) / whole);
  }
  return result;
}

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
  return DibResampled(dib, static_cast<int32_t>(w), static_cast<int32_t>(ht));
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
