#include "pictures/resampler.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <cstddef>
#include <new>

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

void DibRowBgr(const uint8_t* dib, int32_t y, uint8_t* out) {
  const auto& h = *reinterpret_cast<const BitmapInfoHeader*>(dib);
  const int32_t rows = h.biHeight < 0 ? -h.biHeight : h.biHeight;
  const uint8_t* bits = dib + DibBitsOffset(h);
  const uint8_t* row = bits + DibRowStride(h.biWidth, h.biBitCount) * static_cast<uint64_t>(h.biHeight < 0 ? y : rows - 1 - y);
  const RgbQuad* table = reinterpret_cast<const RgbQuad*>(dib + h.biSize);
  const int bitCount = h.biBitCount;
  if (bitCount == 24) return (void)std::memcpy(out, row, static_cast<size_t>(h.biWidth) * 3);
  for (int32_t x = 0; x < h.biWidth; ++x, out += 3) {
    if (bitCount <= 8) {
      const int per = 8 / bitCount, shift = 8 - bitCount * (x % per + 1);
      const RgbQuad& c = table[(row[x / per] >> shift) & ((1 << bitCount) - 1)];
      out[0] = c.rgbBlue, out[1] = c.rgbGreen, out[2] = c.rgbRed;
    } else if (bitCount == 16) {  // 5-5-5
      const unsigned v = row[2 * x] | row[2 * x + 1] << 8;
      out[0] = static_cast<uint8_t>((v & 31) * 255 / 31);
      out[1] = static_cast<uint8_t>((v >> 5 & 31) * 255 / 31);
      out[2] = static_cast<uint8_t>((v >> 10 & 31) * 255 / 31);
    } else {
      std::memcpy(out, row + static_cast<size_t>(x) * 4, 3);
    }
  }
}

namespace {

// The share left of u of the quadratic B-spline (a box of width 1 convolved
// with itself twice: area 1, 3 wide).
double SplineBelow(double u) {
  if (u <= -1.5) return 0;
  if (u >= 1.5) return 1;
  if (u <= -0.5) return (u + 1.5) * (u + 1.5) * (u + 1.5) / 6;
  if (u >= 0.5) return 1 - (1.5 - u) * (1.5 - u) * (1.5 - u) / 6;
  return 0.5 + 0.75 * u - u * u * u / 3;
}

double CatmullRom(double x) {
  x = std::fabs(x);
  if (x < 1) return (1.5 * x - 2.5) * x * x + 1;
  if (x < 2) return ((-0.5 * x + 2.5) * x - 4) * x + 2;
  return 0;
}

}  // namespace

// Source pixel i covers [i, i + 1); new pixel t is centred on (t + 1/2) s,
// s = from / to. Reducing, its weights are the exact integrals over each
// source pixel of a quadratic B-spline three new pixels wide. A box one new
// pixel wide (plain area averaging) leaves 1-pixel lines reduced 2.3 times
// as windows holding 1 to 1.3 lit pixels, a visible beat; a tent two wide
// still beats by a few levels at some scales; the spline's response to such
// patterns stays below a level at every scale. Enlarging, Catmull-Rom at the
// pixel centres, equal sizes giving the picture as it is. Beyond the picture
// its edge pixels repeat.
ResampleAxis MakeResampleAxis(int32_t from, int32_t to, int32_t begin, int32_t end) {
  ResampleAxis a;
  if (from < 1 || to < 1 || begin >= end) return a;
  const double s = static_cast<double>(from) / to;
  const bool reducing = to < from;
  std::vector<double> w;
  a.sourceBegin = from, a.sourceEnd = 0;
  for (int64_t t = begin; t < end; ++t) {
    const double c = (static_cast<double>(t) + 0.5) * s;
    const int64_t lo = reducing ? static_cast<int64_t>(std::floor(c - 1.5 * s)) : static_cast<int64_t>(std::floor(c - 0.5)) - 1;
    const int64_t hi = reducing ? static_cast<int64_t>(std::ceil(c + 1.5 * s)) - 1 : lo + 3;
    int64_t first = std::clamp<int64_t>(lo, 0, from - 1), last = std::clamp<int64_t>(hi, 0, from - 1);
    w.assign(static_cast<size_t>(last - first + 1), 0.0);
    double sum = 0;
    for (int64_t i = lo; i <= hi; ++i) {
      const double v = reducing ? SplineBelow((i + 1 - c) / s) - SplineBelow((i - c) / s) : CatmullRom(c - 0.5 - i);
      w[static_cast<size_t>(std::clamp<int64_t>(i, 0, from - 1) - first)] += v;
      sum += v;
    }
    // Pixels of no weight at either end are not read at all.
    while (w.size() > 1 && w.back() == 0) w.pop_back(), --last;
    while (w.size() > 1 && w.front() == 0) w.erase(w.begin()), ++first;
    a.first.push_back(static_cast<int32_t>(first));
    a.count.push_back(static_cast<int32_t>(w.size()));
    a.at.push_back(a.weights.size());
    for (double v : w) a.weights.push_back(static_cast<float>(v / sum));
    a.sourceBegin = std::min(a.sourceBegin, static_cast<int32_t>(first));
    a.sourceEnd = std::max(a.sourceEnd, static_cast<int32_t>(last + 1));
  }
  return a;
}

// Rows are summed vertically first, at the source's width, into the pending
// new rows each source row falls in (at most four when reducing); a new row
// whose last source row has come is then resampled across and sent out. A
// colour pixel is summed as four floats, which the compiler keeps in one
// vector register.
Resampler::Resampler(int32_t srcW, int32_t srcH, int32_t dstW, int32_t dstH, const Rect& part, int channels,
                     int step, RowSink sink)
    : part_(part), channels_(channels), step_(step), sink_(std::move(sink)) {
  if (srcW < 1 || srcH < 1 || dstW < 1 || dstH < 1 || (channels != 1 && channels != 3) || step < channels ||
      part.left < 0 || part.top < 0 || part.right > dstW || part.bottom > dstH || Width(part) < 1 || Height(part) < 1)
    return;
  try {
    rows_ = MakeResampleAxis(srcH, dstH, part.top, part.bottom);
    columns_ = MakeResampleAxis(srcW, dstW, part.left, part.right);
    // The most new rows open at once: at the start of each, those since the
    // first that has not ended.
    for (size_t j = 0, k = 0; j < rows_.first.size(); ++j) {
      while (rows_.first[k] + rows_.count[k] <= rows_.first[j]) ++k;
      pending_ = std::max(pending_, static_cast<int32_t>(j - k + 1));
    }
    const size_t lanes = channels == 3 ? 4 : 1;
    const size_t span = static_cast<size_t>(columns_.sourceEnd - columns_.sourceBegin) * lanes;
    if (static_cast<uint64_t>(pending_) * span > (uint64_t(1) << 28)) return;  // a gigabyte of sums
    sums_.assign(static_cast<size_t>(pending_) * span, 0.0f);
    row_.resize(span);
    out_.resize(static_cast<size_t>(Width(part)) * channels);
  } catch (const std::bad_alloc&) {
    return;
  }
  ok_ = true;
}

namespace {

// Four floats in one vector register (blue, green, red and a spare), read
// and written at any alignment.
typedef float Lanes __attribute__((vector_size(16)));
typedef Lanes AnyLanes __attribute__((aligned(4)));

uint8_t Byte(float v) { return static_cast<uint8_t>(v >= 254.5f ? 255 : v <= 0.0f ? 0 : v + 0.5f); }

}  // namespace

void Resampler::AddRow(int32_t y, const uint8_t* row) {
  if (!ok_ || y < rows_.sourceBegin || y >= rows_.sourceEnd) return;
  const int32_t n = static_cast<int32_t>(rows_.first.size());
  const size_t lanes = channels_ == 3 ? 4 : 1;
  const size_t pixels = static_cast<size_t>(columns_.sourceEnd - columns_.sourceBegin), span = pixels * lanes;
  for (; entered_ < n && rows_.first[entered_] <= y; ++entered_)
    std::fill_n(sums_.begin() + static_cast<ptrdiff_t>(span * (entered_ % pending_)), span, 0.0f);
  // The row as floats once, then added into each new row it falls in.
  const uint8_t* src = row + static_cast<size_t>(columns_.sourceBegin) * step_;
  float* f = row_.data();
  if (channels_ == 1) {
    for (size_t x = 0; x < pixels; ++x) f[x] = src[x * step_];
  } else {
    for (size_t x = 0; x < pixels; ++x, src += step_, f += 4) f[0] = src[0], f[1] = src[1], f[2] = src[2], f[3] = 0;
  }
  for (int32_t j = next_; j < entered_; ++j) {
    if (y >= rows_.first[j] + rows_.count[j]) continue;
    const float w = rows_.weights[rows_.at[j] + static_cast<size_t>(y - rows_.first[j])];
    float* s = sums_.data() + span * static_cast<size_t>(j % pending_);
    if (channels_ == 1) {
      for (size_t x = 0; x < pixels; ++x) s[x] += w * row_[x];
    } else {
      AnyLanes* __restrict to = reinterpret_cast<AnyLanes*>(s);
      const AnyLanes* from = reinterpret_cast<const AnyLanes*>(row_.data());
      for (size_t x = 0; x < pixels; ++x) to[x] += w * from[x];
    }
  }
  while (next_ < entered_ && rows_.first[next_] + rows_.count[next_] - 1 <= y) {
    Emit(sums_.data() + span * static_cast<size_t>(next_ % pending_));
    ++next_;
  }
}

void Resampler::Emit(float* sums) {
  const int32_t width = Width(part_);
  uint8_t* out = out_.data();
  for (int32_t i = 0; i < width; ++i) {
    const float* w = columns_.weights.data() + columns_.at[i];
    const int32_t count = columns_.count[i];
    if (channels_ == 1) {
      const float* s = sums + (columns_.first[i] - columns_.sourceBegin);
      float v = 0;
      for (int32_t k = 0; k < count; ++k) v += w[k] * s[k];
      *out++ = Byte(v);
      continue;
    }
    const AnyLanes* s = reinterpret_cast<const AnyLanes*>(sums) + (columns_.first[i] - columns_.sourceBegin);
    Lanes v = {0, 0, 0, 0};
    for (int32_t k = 0; k < count; ++k) v += w[k] * s[k];
    out[0] = Byte(v[0]), out[1] = Byte(v[1]), out[2] = Byte(v[2]);
    out += 3;
  }
  sink_(part_.top + next_, out_.data());
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

bool ResampleDibRows(const uint8_t* dib, int32_t dstW, int32_t dstH, const Rect& part, bool keepGrey,
                     const Resampler::RowSink& sink) {
  const auto& h = *reinterpret_cast<const BitmapInfoHeader*>(dib);
  const int32_t rows = h.biHeight < 0 ? -h.biHeight : h.biHeight;
  const bool grey = keepGrey && IsGreyDib(dib);
  // 24-bit, 32-bit and grey rows are read where they are; others are
  // converted a row at a time.
  const bool direct = grey || h.biBitCount == 24 || h.biBitCount == 32;
  Resampler resampler(h.biWidth, rows, dstW, dstH, part, grey ? 1 : 3, grey ? 1 : h.biBitCount == 32 ? 4 : 3, sink);
  if (!resampler.ok()) return false;
  std::vector<uint8_t> row;
  try {
    if (!direct) row.resize(static_cast<size_t>(h.biWidth) * 3);
  } catch (const std::bad_alloc&) {
    return false;
  }
  const uint8_t* bits = dib + DibBitsOffset(h);
  const uint64_t stride = DibRowStride(h.biWidth, h.biBitCount);
  for (int32_t y = resampler.FirstRow(); y < resampler.EndRow(); ++y) {
    if (direct) {
      resampler.AddRow(y, bits + stride * static_cast<uint64_t>(h.biHeight < 0 ? y : rows - 1 - y));
    } else {
      DibRowBgr(dib, y, row.data());
      resampler.AddRow(y, row.data());
    }
  }
  return resampler.Done();
}

BlockHandle ResampleDib(BlockHandle dib, int32_t dstW, int32_t dstH) {
  if (dstW < 1 || dstH < 1 || !DibBlockIsValid(dib)) return 0;
  BlockLock in(dib);
  const bool grey = IsGreyDib(in.bytes());
  const uint16_t bitCount = grey ? 8 : 24;
  BlockHandle result = DibCreate(dstW, dstH, bitCount);
  if (!result) return 0;
  {
    BlockLock out(result);
    if (grey) {
      RgbQuad* table = DibColourTable(out.bytes());
      for (int i = 0; i < 256; ++i) table[i] = RgbQuad{uint8_t(i), uint8_t(i), uint8_t(i), 0};
    }
    uint8_t* bits = DibBits(out.bytes());
    const uint64_t stride = DibRowStride(dstW, bitCount);
    const size_t bytes = static_cast<size_t>(dstW) * (grey ? 1 : 3);
    if (ResampleDibRows(in.bytes(), dstW, dstH, Rect{0, 0, dstW, dstH}, true, [&](int32_t y, const uint8_t* row) {
          std::memcpy(bits + stride * static_cast<uint64_t>(dstH - 1 - y), row, bytes);
        }))
      return result;
  }
  GlobalBlockFree(result);
  return 0;
}

DibResampler::DibResampler(int32_t srcW, int32_t srcH, int32_t dstW, int32_t dstH, int channels)
    : height_(std::min(dstH, srcH)),
      resampler_(srcW, srcH, std::min(dstW, srcW), height_, Rect{0, 0, std::min(dstW, srcW), height_}, channels,
                 channels, [this](int32_t y, const uint8_t* row) {
                   std::memcpy(bits_ + stride_ * static_cast<uint64_t>(height_ - 1 - y), row, rowBytes_);
                 }) {
  if (!resampler_.ok()) return;
  const int32_t width = std::min(dstW, srcW);
  dib_ = DibCreate(width, height_, channels == 1 ? 8 : 24);
  if (!dib_) return;
  uint8_t* bytes = static_cast<uint8_t*>(GlobalBlockLock(dib_));
  if (channels == 1) {
    RgbQuad* table = DibColourTable(bytes);
    for (int i = 0; i < 256; ++i) table[i] = RgbQuad{uint8_t(i), uint8_t(i), uint8_t(i), 0};
  }
  bits_ = DibBits(bytes);
  stride_ = DibRowStride(width, channels == 1 ? 8 : 24);
  rowBytes_ = static_cast<size_t>(width) * channels;
}

DibResampler::~DibResampler() {
  if (!dib_) return;
  GlobalBlockUnlock(dib_);
  GlobalBlockFree(dib_);
}

void DibResampler::AddRow(const uint8_t* row) {
  if (ok()) resampler_.AddRow(rowsIn_++, row);
}

BlockHandle DibResampler::Finish() {
  if (!ok() || !resampler_.Done()) return 0;
  GlobalBlockUnlock(dib_);
  const BlockHandle dib = dib_;
  dib_ = 0;
  return dib;
}
