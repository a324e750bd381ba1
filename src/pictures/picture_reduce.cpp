#include "pictures/picture_reduce.h"

#include <algorithm>
#include <cstring>

#include "base/dib.h"

void ReducedSize(int32_t w, int32_t h, int32_t longest, int32_t* outW, int32_t* outH) {
  *outW = w, *outH = h;
  if (longest <= 0 || (w <= longest && h <= longest)) return;
  // The shorter side is rounded to the nearest pixel, never below one.
  if (w >= h) {
    *outW = longest;
    *outH = static_cast<int32_t>(std::max<int64_t>(1, (static_cast<int64_t>(h) * longest + w / 2) / w));
  } else {
    *outH = longest;
    *outW = static_cast<int32_t>(std::max<int64_t>(1, (static_cast<int64_t>(w) * longest + h / 2) / h));
  }
}

// Positions are measured in units of 1/(src * dst) of the picture's side:
// source pixel i spans [i * dst, (i + 1) * dst), new pixel t spans
// [t * src, (t + 1) * src). The overlap of the two is i's weight in t, and
// the weights of one new pixel add up to src.
AreaReducer::AreaReducer(int32_t srcW, int32_t srcH, int32_t dstW, int32_t dstH, int channels)
    : srcW_(srcW), srcH_(srcH), dstW_(std::min(dstW, srcW)), dstH_(std::min(dstH, srcH)), channels_(channels) {
  if (srcW < 1 || srcH < 1 || dstW < 1 || dstH < 1 || (channels != 1 && channels != 3)) return;
  const size_t across = static_cast<size_t>(dstW_) * channels_;
  try {
    first_.resize(static_cast<size_t>(dstW_));
    count_.resize(static_cast<size_t>(dstW_));
    for (int32_t t = 0; t < dstW_; ++t) {
      const int64_t lo = static_cast<int64_t>(t) * srcW_, hi = lo + srcW_;
      const int64_t i0 = lo / dstW_, i1 = (hi - 1) / dstW_;
      first_[t] = static_cast<int32_t>(i0);
      count_[t] = static_cast<int32_t>(i1 - i0 + 1);
      for (int64_t i = i0; i <= i1; ++i)
        weights_.push_back(static_cast<uint32_t>(std::min(hi, (i + 1) * dstW_) - std::max(lo, i * dstW_)));
    }
    across_.resize(across);
    current_.assign(across, 0.0f);
    next_.assign(across, 0.0f);
  } catch (const std::bad_alloc&) {
    return;
  }
  dib_ = DibCreate(dstW_, dstH_, channels == 1 ? 8 : 24);
  if (!dib_) return;
  bits_ = static_cast<uint8_t*>(GlobalBlockLock(dib_));
  stride_ = DibRowStride(dstW_, channels == 1 ? 8 : 24);
  if (channels == 1) {
    RgbQuad* table = DibColourTable(bits_);
    for (int i = 0; i < 256; ++i) table[i] = RgbQuad{static_cast<uint8_t>(i), static_cast<uint8_t>(i), static_cast<uint8_t>(i), 0};
  }
  bits_ = DibBits(bits_);
}

AreaReducer::~AreaReducer() {
  if (!dib_) return;
  GlobalBlockUnlock(dib_);
  GlobalBlockFree(dib_);
}

void AreaReducer::Emit(const float* sums) {
  if (rowsOut_ >= dstH_) return;
  uint8_t* row = bits_ + stride_ * static_cast<uint64_t>(dstH_ - 1 - rowsOut_++);
  const float scale = 1.0f / (static_cast<float>(srcW_) * static_cast<float>(srcH_));
  const size_t n = static_cast<size_t>(dstW_) * channels_;
  for (size_t k = 0; k < n; ++k) {
    const float v = sums[k] * scale + 0.5f;
    row[k] = static_cast<uint8_t>(v >= 255.0f ? 255 : v <= 0.0f ? 0 : v);
  }
}

void AreaReducer::AddRow(const uint8_t* row) {
  if (!dib_ || rowsIn_ >= srcH_) return;
  const int32_t y = rowsIn_++;
  const int ch = channels_;
  // Across: each new column sums the source pixels it covers, by weight.
  const uint32_t* w = weights_.data();
  for (int32_t t = 0; t < dstW_; ++t) {
    uint32_t sum[3] = {0, 0, 0};
    const uint8_t* p = row + static_cast<size_t>(first_[t]) * ch;
    for (int32_t i = 0; i < count_[t]; ++i, p += ch, ++w)
      for (int k = 0; k < ch; ++k) sum[k] += *w * p[k];
    for (int k = 0; k < ch; ++k) across_[static_cast<size_t>(t) * ch + k] = sum[k];
  }
  // Down: this source row lies in one new row or straddles two.
  const int64_t lo = static_cast<int64_t>(y) * dstH_, hi = lo + dstH_;
  const int64_t rowEnd = static_cast<int64_t>(rowsOut_ + 1) * srcH_;
  const float inCurrent = static_cast<float>(std::min(hi, rowEnd) - lo);
  const float inNext = static_cast<float>(hi > rowEnd ? hi - rowEnd : 0);
  const size_t n = across_.size();
  for (size_t k = 0; k < n; ++k) current_[k] += inCurrent * static_cast<float>(across_[k]);
  if (inNext > 0)
    for (size_t k = 0; k < n; ++k) next_[k] += inNext * static_cast<float>(across_[k]);
  if (hi >= rowEnd) {
    Emit(current_.data());
    current_.swap(next_);
    std::fill(next_.begin(), next_.end(), 0.0f);
  }
}

BlockHandle AreaReducer::Finish() {
  if (!dib_ || rowsIn_ < srcH_ || rowsOut_ < dstH_) return 0;
  GlobalBlockUnlock(dib_);
  const BlockHandle dib = dib_;
  dib_ = 0;
  return dib;
}

void DibRowBgr(const uint8_t* dib, int32_t y, uint8_t* out) {
  const auto& h = *reinterpret_cast<const BitmapInfoHeader*>(dib);
  const int32_t rows = h.biHeight < 0 ? -h.biHeight : h.biHeight;
  const uint8_t* bits = dib + DibBitsOffset(h);
  const uint8_t* row = bits + DibRowStride(h.biWidth, h.biBitCount) * static_cast<uint64_t>(h.biHeight < 0 ? y : rows - 1 - y);
  const RgbQuad* table = reinterpret_cast<const RgbQuad*>(dib + h.biSize);
  for (int32_t x = 0; x < h.biWidth; ++x, out += 3) {
    switch (h.biBitCount) {
      case 1:
      case 4:
      case 8: {
        const int per = 8 / h.biBitCount, shift = 8 - h.biBitCount * (x % per + 1);
        const RgbQuad& c = table[(row[x / per] >> shift) & ((1 << h.biBitCount) - 1)];
        out[0] = c.rgbBlue, out[1] = c.rgbGreen, out[2] = c.rgbRed;
        break;
      }
      case 16: {  // 5-5-5
        const unsigned v = row[2 * x] | row[2 * x + 1] << 8;
        out[0] = static_cast<uint8_t>((v & 31) * 255 / 31);
        out[1] = static_cast<uint8_t>((v >> 5 & 31) * 255 / 31);
        out[2] = static_cast<uint8_t>((v >> 10 & 31) * 255 / 31);
        break;
      }
      default: std::memcpy(out, row + static_cast<size_t>(x) * (h.biBitCount / 8), 3);
    }
  }
}

namespace {

bool IsGreyDib(const uint8_t* dib) {
  const auto& h = *reinterpret_cast<const BitmapInfoHeader*>(dib);
  if (h.biBitCount != 8) return false;
  const RgbQuad* table = reinterpret_cast<const RgbQuad*>(dib + h.biSize);
  for (int i = 0; i < 256; ++i)
    if (table[i].rgbRed != i || table[i].rgbGreen != i || table[i].rgbBlue != i) return false;
  return true;
}

}  // namespace

BlockHandle DibReduced(BlockHandle dib, int32_t dstW, int32_t dstH) {
  if (!DibBlockIsValid(dib)) return 0;
  BlockLock lock(dib);
  const auto& h = *lock.as<BitmapInfoHeader>();
  const int32_t rows = h.biHeight < 0 ? -h.biHeight : h.biHeight;
  const bool grey = IsGreyDib(lock.bytes());
  AreaReducer reducer(h.biWidth, rows, dstW, dstH, grey ? 1 : 3);
  if (!reducer.ok()) return 0;
  std::vector<uint8_t> row;
  try {
    row.resize(static_cast<size_t>(h.biWidth) * 3);
  } catch (const std::bad_alloc&) {
    return 0;
  }
  for (int32_t y = 0; y < rows; ++y) {
    DibRowBgr(lock.bytes(), y, row.data());
    if (grey)  // grey table: the index is the level, and blue equals it
      for (int32_t x = 0; x < h.biWidth; ++x) row[static_cast<size_t>(x)] = row[3 * static_cast<size_t>(x)];
    reducer.AddRow(row.data());
  }
  return reducer.Finish();
}
