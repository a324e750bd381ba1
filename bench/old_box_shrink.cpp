#include "bench/old_box_shrink.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <vector>

#include "base/dib.h"

namespace {

constexpr uint64_t kMostDividedByMultiplying = 1 << 16;
uint64_t Reciprocal(uint64_t n) { return ((uint64_t(1) << 40) + n - 1) / n; }
uint32_t Mean(uint64_t sum, uint64_t n) {
  if (n == 0) return 0;
  const uint64_t x = sum + n / 2;
  return static_cast<uint32_t>(n <= kMostDividedByMultiplying ? x * Reciprocal(n) >> 40 : x / n);
}

constexpr int kRowsPerSum = 65535 / 255;

void AddRow(const uint8_t* __restrict row, uint16_t* __restrict sum, size_t n, bool first) {
  size_t i = 0;
  if (first) {
    for (; i + 16 <= n; i += 16)
      for (int k = 0; k < 16; ++k) sum[i + k] = row[i + k];
    for (; i < n; ++i) sum[i] = row[i];
    return;
  }
  for (; i + 16 <= n; i += 16)
    for (int k = 0; k < 16; ++k) sum[i + k] = static_cast<uint16_t>(sum[i + k] + row[i + k]);
  for (; i < n; ++i) sum[i] = static_cast<uint16_t>(sum[i] + row[i]);
}

struct Means {
  uint64_t reciprocal[2], half[2];
  uint32_t alpha;
};

template <int kFewest>
void AverageColumns(const uint16_t* sum, const int* first, int columns, int fewest, const Means& m, uint32_t* pixel) {
  const int count = kFewest ? kFewest : fewest;
  for (int c = 0; c < columns; ++c) {
    uint32_t b = 0, g = 0, r = 0;
    for (int i = 0; i < count; ++i, sum += 3) b += sum[0], g += sum[1], r += sum[2];
    const int extra = first[c + 1] - first[c] - count;  // 0 or 1
    b += extra * sum[0], g += extra * sum[1], r += extra * sum[2];
    sum += 3 * extra;
    const uint64_t reciprocal = m.reciprocal[extra], half = m.half[extra];
    pixel[c] = m.alpha | uint32_t((r + half) * reciprocal >> 40) << 16 | uint32_t((g + half) * reciprocal >> 40) << 8 |
               uint32_t((b + half) * reciprocal >> 40);
  }
}

}  // namespace

void OldBoxShrinkDib(const uint8_t* dib, int width, int height, const Rect& part, uint8_t* image, int stride,
                     uint32_t alpha) {
  const BitmapInfoHeader& h = *reinterpret_cast<const BitmapInfoHeader*>(dib);
  const int sourceW = h.biWidth, sourceH = std::abs(h.biHeight);
  const int partW = Width(part);
  if (h.biBitCount != 24 || partW <= 0 || Height(part) <= 0 || width > sourceW || height > sourceH) return;
  std::vector<int> first(size_t(partW) + 1);
  for (int c = 0; c <= partW; ++c)
    first[c] = static_cast<int>((int64_t(part.left + c) * sourceW + width - 1) / width);
  const int from = first[0], to = first[partW];
  int fewest = INT32_MAX;
  for (int c = 0; c < partW; ++c) fewest = std::min(fewest, first[c + 1] - first[c]);
  std::vector<uint16_t> sums(size_t(to - from + 1) * 3);
  const size_t summed = sums.size() - 3;
  std::vector<uint64_t> totals(size_t(partW) * 3);
  const uint8_t* bits = dib + DibBitsOffset(h);
  const uint64_t rowStride = DibRowStride(sourceW, 24);
  for (int out = part.top; out < part.bottom; ++out) {
    const int top = static_cast<int>(int64_t(out) * sourceH / height);
    const int bottom = static_cast<int>(int64_t(out + 1) * sourceH / height);
    const uint64_t rows = uint64_t(bottom - top);
    const uint64_t fewer = uint64_t(fewest) * rows, more = fewer + rows;
    uint32_t* pixel = reinterpret_cast<uint32_t*>(image + size_t(out - part.top) * stride);
    for (int y = top; y < bottom;) {
      const int start = y, end = std::min(bottom, y + kRowsPerSum);
      for (; y < end; ++y)
        AddRow(bits + (h.biHeight > 0 ? sourceH - 1 - y : y) * rowStride + size_t(from) * 3, sums.data(), summed,
               y == start);
      const uint16_t* sum = sums.data();
      if (end == bottom && start == top && more <= kMostDividedByMultiplying) {
        const Means means{{Reciprocal(fewer), Reciprocal(more)}, {fewer / 2, more / 2}, alpha};
        if (fewest == 2) AverageColumns<2>(sum, first.data(), partW, fewest, means, pixel);
        else if (fewest == 1) AverageColumns<1>(sum, first.data(), partW, fewest, means, pixel);
        else AverageColumns<0>(sum, first.data(), partW, fewest, means, pixel);
        break;
      }
      uint64_t* total = totals.data();
      for (int c = 0; c < partW; ++c, total += 3) {
        uint64_t b = 0, g = 0, r = 0;
        for (const uint16_t* end = sums.data() + size_t(first[c + 1] - from) * 3; sum < end; sum += 3)
          b += sum[0], g += sum[1], r += sum[2];
        if (start == top) total[0] = b, total[1] = g, total[2] = r;
        else total[0] += b, total[1] += g, total[2] += r;
      }
      if (y < bottom) continue;
      total = totals.data();
      for (int c = 0; c < partW; ++c, total += 3) {
        const uint64_t n = first[c + 1] - first[c] == fewest ? fewer : more;
        pixel[c] = alpha | Mean(total[2], n) << 16 | Mean(total[1], n) << 8 | Mean(total[0], n);
      }
    }
    if (top == bottom) std::fill(pixel, pixel + partW, alpha);
  }
}
