#include "pictures/resampler.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <cstddef>
#include <new>
#include <system_error>
#include <thread>

#ifdef __SSE2__
#include <emmintrin.h>
#endif
#if defined(__x86_64__) && defined(__GNUC__)
#include <immintrin.h>
#endif

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

// Whether the processor has AVX2 (asked once, whenever first needed).
bool HasAvx2() {
#if defined(__SSE2__) && defined(__x86_64__) && defined(__GNUC__)
  static const bool has = (__builtin_cpu_init(), __builtin_cpu_supports("avx2"));
  return has;
#else
  return false;
#endif
}

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
// s = extent / to. Reducing, its weights are the exact integrals over each
// source pixel of a quadratic B-spline three new pixels wide. A box one new
// pixel wide (plain area averaging) leaves 1-pixel lines reduced 2.3 times
// as windows holding 1 to 1.3 lit pixels, a visible beat; a tent two wide
// still beats by a few levels at some scales; the spline's response to such
// patterns stays below a level at every scale. Enlarging, Catmull-Rom at the
// pixel centres, equal sizes giving the picture as it is. Beyond the picture
// its edge pixels repeat. The weights are kept in 14 bits, each the step
// between rounded running totals, so they add up to exactly 1 and any run of
// them is within half a step of its exact sum.
ResampleAxis MakeResampleAxis(int32_t from, int32_t to, int32_t begin, int32_t end, double extent) {
  ResampleAxis a;
  if (from < 1 || to < 1 || begin >= end) return a;
  if (!(extent > 0 && extent <= from)) extent = from;
  const double s = extent / to;
  const bool reducing = to < extent;
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
    while (w.size() > 1 && w.back() == 0) w.pop_back(), --last;
    a.first.push_back(static_cast<int32_t>(first));
    a.count.push_back(static_cast<int32_t>(w.size()));
    a.at.push_back(a.weights.size());
    double total = 0;
    long before = 0;
    for (double v : w) {
      total += v / sum;
      const long upTo = std::lround(total * (1 << ResampleAxis::kWeightBits));
      a.weights.push_back(static_cast<int16_t>(upTo - before));
      before = upTo;
    }
    a.sourceBegin = std::min(a.sourceBegin, static_cast<int32_t>(first));
    a.sourceEnd = std::max(a.sourceEnd, static_cast<int32_t>(last + 1));
  }
  return a;
}

// Rows are summed vertically first, at the source's width, into the pending
// new rows each source row falls in, four source rows a pass; the new rows
// those end are then resampled across and sent out. Reducing by two or more,
// pairs of rows and then pairs of pixels are first added up, exactly: the
// bell then spans half as many (larger) pixels each way. Sums are whole numbers
// (bytes times 14-bit weights in 32 bits, then 16-bit values with 6 bits of
// fraction times 14-bit weights), so they come out the same in any order,
// for any part, on any thread and on any machine; with SSE2 two products are
// taken at once (pmaddwd), with AVX2 twice as many.
Resampler::Resampler(int32_t srcW, int32_t srcH, int32_t dstW, int32_t dstH, const Rect& part, int channels,
                     int step, RowSink sink, bool rowsStay)
    : part_(part), channels_(channels), step_(step), sink_(std::move(sink)), rowsStay_(rowsStay) {
  if (srcW < 1 || srcH < 1 || dstW < 1 || dstH < 1 || (channels != 1 && channels != 3) || step < channels ||
      part.left < 0 || part.top < 0 || part.right > dstW || part.bottom > dstH || Width(part) < 1 || Height(part) < 1)
    return;
  try {
    // Halving keeps the source's geometry: an odd side's last pair is one
    // pixel counted twice, reaching half a pixel past the picture.
    halve_ = srcW >= 2 * static_cast<int64_t>(dstW) && srcH >= 2 * static_cast<int64_t>(dstH);
    const int k = halve_ ? 2 : 1;
    rows_ = MakeResampleAxis((srcH + k - 1) / k, dstH, part.top, part.bottom, srcH / double(k));
    columns_ = MakeResampleAxis((srcW + k - 1) / k, dstW, part.left, part.right, srcW / double(k));
    srcH_ = srcH;
    firstRow_ = k * rows_.sourceBegin;
    endRow_ = std::min(srcH, k * rows_.sourceEnd);
    // The most new rows open at once, as AddRow starts them and sends them
    // out after every four source rows.
    const int32_t n = static_cast<int32_t>(rows_.first.size());
    for (int32_t y = rows_.sourceBegin, entered = 0, next = 0, held = 0; y < rows_.sourceEnd; ++y) {
      while (entered < n && rows_.first[entered] <= y) ++entered;
      pending_ = std::max(pending_, entered - next);
      if (++held < kHeld && y < rows_.sourceEnd - 1) continue;
      held = 0;
      while (next < entered && rows_.first[next] + rows_.count[next] - 1 <= y) ++next;
    }
    const size_t pixels = static_cast<size_t>(columns_.sourceEnd - columns_.sourceBegin);
    const size_t span = pixels * channels;
    if (static_cast<uint64_t>(pending_) * span > (uint64_t(1) << 28)) return;  // a gigabyte of sums
    sums_.assign(static_cast<size_t>(pending_) * span, 0);
    if (halve_) {
      usedBytes_ = static_cast<size_t>(std::min(srcW, 2 * columns_.sourceEnd) - 2 * columns_.sourceBegin) * step;
      columnSums_.resize(usedBytes_ + 16);
      sideSums_.resize(usedBytes_ + 16);
      if (!rowsStay) upper_.resize(usedBytes_);
      heldHalves_.resize(kHeld * span + 4);  // room for a last pixel written as four values
    } else {
      held_.resize(kHeld * span);
    }
    pairs_.resize(kHeld * span);
    // Room for reading a pair of pixels as eight values past the last.
    across_.assign(span + 3 * channels + 8, 0);
    // Each new pixel's weights two by two (an odd one with a 0), four
    // copies of each pair; where AVX2 makes two pixels of as many pairs at
    // once, pair by pair, the first's four beside the second's.
    const auto weight = [&](int32_t i, int32_t k) {
      return static_cast<uint32_t>(static_cast<uint16_t>(k < columns_.count[i] ? columns_.weights[columns_.at[i] + k] : 0));
    };
    const auto pair = [&](int32_t i, int32_t k) { return static_cast<int32_t>(weight(i, k) | weight(i, k + 1) << 16); };
    const int32_t width = Width(part);
    acrossTwo_ = channels == 3 && HasAvx2();
    if (acrossTwo_) {  // every new pixel as many pairs as the most any takes, the others weighing 0
      for (int32_t i = 0; i < width; ++i) pairsEach_ = std::max(pairsEach_, (columns_.count[i] + 1) / 2);
      for (int32_t i = 0; i < width; i += 2)
        for (int32_t k = 0; k < 2 * pairsEach_; k += 2) {
          columnPairs_.insert(columnPairs_.end(), 4, pair(i, k));
          if (i + 1 < width) columnPairs_.insert(columnPairs_.end(), 4, pair(i + 1, k));
        }
    } else {
      for (int32_t i = 0; i < width; ++i)
        for (int32_t k = 0; k < columns_.count[i]; k += 2) columnPairs_.insert(columnPairs_.end(), 4, pair(i, k));
    }
    if (channels == 3) byPairs_.resize((pixels + 2 * static_cast<size_t>(pairsEach_)) * 8);
    out_.resize(static_cast<size_t>(Width(part)) * channels + 1);
  } catch (const std::bad_alloc&) {
    return;
  }
  ok_ = true;
}

namespace {

// pairs = a0 b0 a1 b1 ... as 16-bit values.
void PairUp(const uint8_t* a, const uint8_t* b, int16_t* pairs, size_t n) {
  size_t i = 0;
#ifdef __SSE2__
  const __m128i zero = _mm_setzero_si128();
  for (; i + 16 <= n; i += 16) {
    const __m128i va = _mm_loadu_si128(reinterpret_cast<const __m128i*>(a + i));
    const __m128i vb = _mm_loadu_si128(reinterpret_cast<const __m128i*>(b + i));
    const __m128i lo = _mm_unpacklo_epi8(va, vb), hi = _mm_unpackhi_epi8(va, vb);
    __m128i* to = reinterpret_cast<__m128i*>(pairs + 2 * i);
    _mm_storeu_si128(to, _mm_unpacklo_epi8(lo, zero));
    _mm_storeu_si128(to + 1, _mm_unpackhi_epi8(lo, zero));
    _mm_storeu_si128(to + 2, _mm_unpacklo_epi8(hi, zero));
    _mm_storeu_si128(to + 3, _mm_unpackhi_epi8(hi, zero));
  }
#endif
  for (; i < n; ++i) pairs[2 * i] = a[i], pairs[2 * i + 1] = b[i];
}

// The same for rows of 16-bit values.
void PairUp16(const int16_t* a, const int16_t* b, int16_t* pairs, size_t n) {
  size_t i = 0;
#ifdef __SSE2__
  for (; i + 8 <= n; i += 8) {
    const __m128i va = _mm_loadu_si128(reinterpret_cast<const __m128i*>(a + i));
    const __m128i vb = _mm_loadu_si128(reinterpret_cast<const __m128i*>(b + i));
    __m128i* to = reinterpret_cast<__m128i*>(pairs + 2 * i);
    _mm_storeu_si128(to, _mm_unpacklo_epi16(va, vb));
    _mm_storeu_si128(to + 1, _mm_unpackhi_epi16(va, vb));
  }
#endif
  for (; i < n; ++i) pairs[2 * i] = a[i], pairs[2 * i + 1] = b[i];
}

// sum[i] = a[i] + b[i], bytes added into 16 bits.
void AddBytes(const uint8_t* a, const uint8_t* b, int16_t* sum, size_t n) {
  size_t i = 0;
#ifdef __SSE2__
  const __m128i zero = _mm_setzero_si128();
  for (; i + 16 <= n; i += 16) {
    const __m128i va = _mm_loadu_si128(reinterpret_cast<const __m128i*>(a + i));
    const __m128i vb = _mm_loadu_si128(reinterpret_cast<const __m128i*>(b + i));
    __m128i* to = reinterpret_cast<__m128i*>(sum + i);
    _mm_storeu_si128(to, _mm_add_epi16(_mm_unpacklo_epi8(va, zero), _mm_unpacklo_epi8(vb, zero)));
    _mm_storeu_si128(to + 1, _mm_add_epi16(_mm_unpackhi_epi8(va, zero), _mm_unpackhi_epi8(vb, zero)));
  }
#endif
  for (; i < n; ++i) sum[i] = static_cast<int16_t>(a[i] + b[i]);
}

// sum[i] = v[i] + v[i + step].
void AddAlong(const int16_t* v, size_t step, int16_t* sum, size_t n) {
  size_t i = 0;
#ifdef __SSE2__
  for (; i + 8 <= n; i += 8)
    _mm_storeu_si128(reinterpret_cast<__m128i*>(sum + i),
                     _mm_add_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(v + i)),
                                   _mm_loadu_si128(reinterpret_cast<const __m128i*>(v + i + step))));
#endif
  for (; i < n; ++i) sum[i] = static_cast<int16_t>(v[i] + v[i + step]);
}

// s[i] += wa a[i] + wb b[i] for the pairs of PairUp, `both` holding wa in
// its low half and wb in its high half.
void AddPairs(int32_t* __restrict s, const int16_t* pairs, int32_t both, size_t n) {
  size_t i = 0;
#ifdef __SSE2__
  const __m128i w = _mm_set1_epi32(both);
  for (; i + 4 <= n; i += 4) {
    __m128i* to = reinterpret_cast<__m128i*>(s + i);
    const __m128i p = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pairs + 2 * i));
    _mm_storeu_si128(to, _mm_add_epi32(_mm_loadu_si128(to), _mm_madd_epi16(p, w)));
  }
#endif
  const int32_t wa = static_cast<int16_t>(both & 0xFFFF), wb = static_cast<int16_t>(static_cast<uint32_t>(both) >> 16);
  for (; i < n; ++i) s[i] += wa * pairs[2 * i] + wb * pairs[2 * i + 1];
}

// s[i] += the pairs of `one` by the weights `first` and those of `two` by `second`.
void AddQuads(int32_t* __restrict s, const int16_t* one, const int16_t* two, int32_t first, int32_t second, size_t n) {
  size_t i = 0;
#ifdef __SSE2__
  const __m128i w = _mm_set1_epi32(first), v = _mm_set1_epi32(second);
  for (; i + 4 <= n; i += 4) {
    __m128i* to = reinterpret_cast<__m128i*>(s + i);
    const __m128i a = _mm_madd_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(one + 2 * i)), w);
    const __m128i b = _mm_madd_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(two + 2 * i)), v);
    _mm_storeu_si128(to, _mm_add_epi32(_mm_loadu_si128(to), _mm_add_epi32(a, b)));
  }
#endif
  AddPairs(s + i, one + 2 * i, first, n - i);
  AddPairs(s + i, two + 2 * i, second, n - i);
}

#if defined(__x86_64__) && defined(__GNUC__)
// The same eight at a time, where the processor has AVX2.
__attribute__((target("avx2"))) void AddPairsAvx2(int32_t* __restrict s, const int16_t* pairs, int32_t both,
                                                  size_t n) {
  size_t i = 0;
  const __m256i w = _mm256_set1_epi32(both);
  for (; i + 8 <= n; i += 8) {
    __m256i* to = reinterpret_cast<__m256i*>(s + i);
    const __m256i p = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pairs + 2 * i));
    _mm256_storeu_si256(to, _mm256_add_epi32(_mm256_loadu_si256(to), _mm256_madd_epi16(p, w)));
  }
  AddPairs(s + i, pairs + 2 * i, both, n - i);
}
void AddPairsBest(int32_t* s, const int16_t* pairs, int32_t both, size_t n) {
  (HasAvx2() ? AddPairsAvx2 : AddPairs)(s, pairs, both, n);
}

__attribute__((target("avx2"))) void AddQuadsAvx2(int32_t* __restrict s, const int16_t* one, const int16_t* two,
                                                  int32_t first, int32_t second, size_t n) {
  size_t i = 0;
  const __m256i w = _mm256_set1_epi32(first), v = _mm256_set1_epi32(second);
  for (; i + 8 <= n; i += 8) {
    __m256i* to = reinterpret_cast<__m256i*>(s + i);
    const __m256i a = _mm256_madd_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(one + 2 * i)), w);
    const __m256i b = _mm256_madd_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(two + 2 * i)), v);
    _mm256_storeu_si256(to, _mm256_add_epi32(_mm256_loadu_si256(to), _mm256_add_epi32(a, b)));
  }
  AddQuads(s + i, one + 2 * i, two + 2 * i, first, second, n - i);
}
void AddQuadsBest(int32_t* s, const int16_t* one, const int16_t* two, int32_t first, int32_t second, size_t n) {
  (HasAvx2() ? AddQuadsAvx2 : AddQuads)(s, one, two, first, second, n);
}
#else
const auto AddPairsBest = AddPairs;
const auto AddQuadsBest = AddQuads;
#endif

// A row of sums (bytes times 1 << 14, or four times that when halving,
// `shift` 8 or 10) as 16-bit values with 6 bits of fraction.
void Narrow(const int32_t* s, int16_t* t, size_t n, int shift) {
  size_t i = 0;
  const int32_t round = 1 << (shift - 1);
#ifdef __SSE2__
  const __m128i half = _mm_set1_epi32(round), by = _mm_cvtsi32_si128(shift);
  for (; i + 8 <= n; i += 8) {
    const __m128i lo = _mm_sra_epi32(_mm_add_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i)), half), by);
    const __m128i hi = _mm_sra_epi32(_mm_add_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i + 4)), half), by);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(t + i), _mm_packs_epi32(lo, hi));
  }
#endif
  for (; i < n; ++i) t[i] = static_cast<int16_t>(std::clamp((s[i] + round) >> shift, -32768, 32767));
}

// A sum of 16-bit values with 6 bits of fraction times 14-bit weights as a byte.
uint8_t Byte(int32_t v) { return static_cast<uint8_t>(std::clamp((v + (1 << 19)) >> 20, 0, 255)); }

}  // namespace

int16_t Resampler::RowWeight(int32_t j, int32_t y) const {
  const int32_t d = y - rows_.first[j];
  return d >= 0 && d < rows_.count[j] ? rows_.weights[rows_.at[j] + static_cast<size_t>(d)] : 0;
}

void Resampler::AddRow(int32_t y, const uint8_t* row) {
  if (!ok_ || y < firstRow_ || y >= endRow_) return;
  if (!halve_) return Enter(y, row + static_cast<size_t>(columns_.sourceBegin) * step_);
  // Halving, the upper row of a pair waits for the lower; a last row of an
  // odd height is added to itself.
  const uint8_t* src = row + static_cast<size_t>(2 * columns_.sourceBegin) * step_;
  if (y % 2 == 0 && y + 1 < srcH_) {
    upperY_ = y;
    upperRow_ = rowsStay_ ? src : static_cast<const uint8_t*>(std::memcpy(upper_.data(), src, usedBytes_));
    return;
  }
  const size_t span = static_cast<size_t>(columns_.sourceEnd - columns_.sourceBegin) * channels_;
  Halve(y % 2 == 1 && upperY_ == y - 1 ? upperRow_ : src, src, heldHalves_.data() + span * heldCount_);
  Enter(y / 2, nullptr);
}

// Two source rows become one of sums of two by two pixels (`out`, a row of
// the halved picture); a last column of an odd width is added to itself.
void Resampler::Halve(const uint8_t* above, const uint8_t* below, int16_t* out) {
  const size_t step = static_cast<size_t>(step_), pixels = usedBytes_ / step;
  const int32_t halves = columns_.sourceEnd - columns_.sourceBegin;
  int16_t* down = columnSums_.data();
  int16_t* both = sideSums_.data();
  AddBytes(above, below, down, usedBytes_);
  AddAlong(down, step, both, usedBytes_ - step);
  if (channels_ == 3) {  // four values a pixel, the fourth overwritten by the next or spare
    for (int32_t x = 0; x < halves; ++x) std::memcpy(out + 3 * x, both + 2 * step * x, 4 * sizeof(int16_t));
  } else {
    for (int32_t x = 0; x < halves; ++x) out[x] = both[2 * step * x];
  }
  if (pixels % 2 == 1)
    for (int c = 0; c < channels_; ++c)
      out[(halves - 1) * channels_ + c] = static_cast<int16_t>(2 * down[(pixels - 1) * step + c]);
}

// Row `y` of the picture being resampled (halved or not): rows are kept
// (or only pointed at, when they stay) until four have come or the last;
// then the new rows they end go out.
void Resampler::Enter(int32_t y, const uint8_t* src) {
  const int32_t n = static_cast<int32_t>(rows_.first.size());
  const size_t pixels = static_cast<size_t>(columns_.sourceEnd - columns_.sourceBegin), span = pixels * channels_;
  for (; entered_ < n && rows_.first[entered_] <= y; ++entered_)
    std::fill_n(sums_.begin() + static_cast<ptrdiff_t>(span * (entered_ % pending_)), span, 0);
  const bool last = heldCount_ == kHeld - 1 || y == rows_.sourceEnd - 1;
  if (!halve_) {
    uint8_t* keep = held_.data() + span * heldCount_;
    if (step_ != channels_) {
      for (size_t x = 0; x < pixels; ++x) std::memcpy(keep + x * channels_, src + x * step_, channels_);
      src = keep;
    }
    heldRows_[heldCount_] = src == keep || rowsStay_ || last ? src : static_cast<uint8_t*>(std::memcpy(keep, src, span));
  }
  heldY_[heldCount_++] = y;
  if (!last) return;
  AddHeldRows();
  while (next_ < entered_ && rows_.first[next_] + rows_.count[next_] - 1 <= y) {
    Emit(sums_.data() + span * static_cast<size_t>(next_ % pending_));
    ++next_;
  }
}

// The held rows two by two (the last alone paired with itself at no weight),
// each pair or both pairs added into every new row they fall in at once.
void Resampler::AddHeldRows() {
  const size_t span = static_cast<size_t>(columns_.sourceEnd - columns_.sourceBegin) * channels_;
  const int n = heldCount_;
  int32_t weights[kHeld];  // two 16-bit weights in each even one
  for (int k = 0; k < n; k += 2) {
    const int other = k + 1 < n ? k + 1 : k;
    if (halve_)
      PairUp16(heldHalves_.data() + span * k, heldHalves_.data() + span * other, pairs_.data() + 2 * span * (k / 2), span);
    else
      PairUp(heldRows_[k], heldRows_[other], pairs_.data() + 2 * span * (k / 2), span);
  }
  for (int32_t j = next_; j < entered_; ++j) {
    for (int k = 0; k < n; k += 2) {
      const int16_t a = RowWeight(j, heldY_[k]), b = k + 1 < n ? RowWeight(j, heldY_[k + 1]) : 0;
      weights[k] = static_cast<int32_t>(static_cast<uint16_t>(a) | static_cast<uint32_t>(static_cast<uint16_t>(b)) << 16);
    }
    int32_t* s = sums_.data() + span * static_cast<size_t>(j % pending_);
    const int16_t* two = pairs_.data() + 2 * span;
    if (n > 2 && weights[0] != 0 && weights[2] != 0) AddQuadsBest(s, pairs_.data(), two, weights[0], weights[2], span);
    else if (weights[0] != 0) AddPairsBest(s, pairs_.data(), weights[0], span);
    else if (n > 2 && weights[2] != 0) AddPairsBest(s, two, weights[2], span);
  }
  heldCount_ = 0;
}

#ifdef __SSE2__
namespace {

// A pixel's blue, green, red and a spare as bytes from the sums of its pairs.
inline int32_t PixelBytes(__m128i v) {
  v = _mm_srai_epi32(_mm_add_epi32(v, _mm_set1_epi32(1 << 19)), 20);
  v = _mm_packs_epi32(v, v);
  return _mm_cvtsi128_si32(_mm_packus_epi16(v, v));
}

// The new pixels of a row across from its source pixels side by side
// (`byPairs`, from source pixel `begin`) and the weights of each pair (four
// copies); `out` has a spare byte past the last pixel.
void Across(const int16_t* byPairs, const int32_t* pair, const int32_t* first, const int32_t* count, int32_t begin,
            int32_t width, uint8_t* out) {
  for (int32_t i = 0; i < width; ++i, out += 3) {
    __m128i v = _mm_setzero_si128();
    const int16_t* two = byPairs + 8 * static_cast<size_t>(first[i] - begin);
    for (int32_t k = 0; k < count[i]; k += 2, pair += 4, two += 16)
      v = _mm_add_epi32(v, _mm_madd_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(two)),
                                          _mm_loadu_si128(reinterpret_cast<const __m128i*>(pair))));
    const int32_t bytes = PixelBytes(v);
    std::memcpy(out, &bytes, 4);  // the fourth is overwritten by the next pixel or is the spare
  }
}

#if defined(__x86_64__) && defined(__GNUC__)
// The same, two new pixels at once, each taking `pairs` pairs.
__attribute__((target("avx2"))) void AcrossAvx2(const int16_t* byPairs, const int32_t* pair, const int32_t* first,
                                                int32_t pairs, int32_t begin, int32_t width, uint8_t* out) {
  auto at = [](const void* p) { return reinterpret_cast<const __m128i*>(p); };
  for (int32_t i = 0; i < width;) {
    if (i + 1 == width) {  // a last one on its own
      const int32_t count = 2 * pairs;
      Across(byPairs, pair, first + i, &count, begin, 1, out);
      return;
    }
    const int16_t* two = byPairs + 8 * static_cast<size_t>(first[i] - begin);
    const int16_t* nextTwo = byPairs + 8 * static_cast<size_t>(first[i + 1] - begin);
    __m256i v = _mm256_setzero_si256();
    for (int32_t k = 0; k < pairs; ++k, pair += 8)
      v = _mm256_add_epi32(v, _mm256_madd_epi16(_mm256_loadu2_m128i(at(nextTwo + 16 * k), at(two + 16 * k)),
                                                _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pair))));
    const int32_t low = PixelBytes(_mm256_castsi256_si128(v)), high = PixelBytes(_mm256_extracti128_si256(v, 1));
    std::memcpy(out, &low, 4);
    std::memcpy(out + 3, &high, 4);
    i += 2, out += 6;
  }
}
#endif

}  // namespace
#endif

void Resampler::Emit(const int32_t* sums) {
  const int32_t width = Width(part_);
  const size_t pixels = static_cast<size_t>(columns_.sourceEnd - columns_.sourceBegin);
  Narrow(sums, across_.data(), pixels * channels_, halve_ ? 10 : 8);
  uint8_t* out = out_.data();
  if (channels_ == 1) {
    for (int32_t i = 0; i < width; ++i) {
      const int16_t* w = columns_.weights.data() + columns_.at[i];
      const int16_t* t = across_.data() + (columns_.first[i] - columns_.sourceBegin);
      int32_t v = 0;
      for (int32_t k = 0; k < columns_.count[i]; ++k) v += w[k] * t[k];
      out[i] = Byte(v);
    }
  } else {
#ifdef __SSE2__
    // Each source pixel beside the next, blue, green and red paired up (b0
    // b1 g0 g1 r0 r1 and two left over), to be multiplied by two weights at once.
    const int16_t* t = across_.data();
    for (size_t p = 0; p < pixels; ++p, t += 3)
      _mm_storeu_si128(reinterpret_cast<__m128i*>(byPairs_.data() + 8 * p),
                       _mm_unpacklo_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(t)),
                                          _mm_loadu_si128(reinterpret_cast<const __m128i*>(t + 3))));
#if defined(__x86_64__) && defined(__GNUC__)
    if (acrossTwo_)
      AcrossAvx2(byPairs_.data(), columnPairs_.data(), columns_.first.data(), pairsEach_, columns_.sourceBegin, width,
                 out);
    else
#endif
      Across(byPairs_.data(), columnPairs_.data(), columns_.first.data(), columns_.count.data(), columns_.sourceBegin,
             width, out);
#else
    for (int32_t i = 0; i < width; ++i, out += 3) {
      const int16_t* w = columns_.weights.data() + columns_.at[i];
      const int16_t* t = across_.data() + static_cast<size_t>(columns_.first[i] - columns_.sourceBegin) * 3;
      int32_t v[3] = {0, 0, 0};
      for (int32_t k = 0; k < columns_.count[i]; ++k, t += 3)
        for (int c = 0; c < 3; ++c) v[c] += w[k] * t[c];
      out[0] = Byte(v[0]), out[1] = Byte(v[1]), out[2] = Byte(v[2]);
    }
#endif
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

namespace {

// The rows of `part` made by one resampler reading the Dib's rows where they are.
bool ResampleBand(const uint8_t* dib, int32_t dstW, int32_t dstH, const Rect& part, bool grey,
                  const Resampler::RowSink& sink) {
  const auto& h = *reinterpret_cast<const BitmapInfoHeader*>(dib);
  const int32_t rows = h.biHeight < 0 ? -h.biHeight : h.biHeight;
  // 24-bit, 32-bit and grey rows are read where they are; others are
  // converted a row at a time.
  const bool direct = grey || h.biBitCount == 24 || h.biBitCount == 32;
  Resampler resampler(h.biWidth, rows, dstW, dstH, part, grey ? 1 : 3, grey ? 1 : h.biBitCount == 32 ? 4 : 3, sink,
                      direct);
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

}  // namespace

// A large part is made in two bands of rows, the lower one on a second
// thread; every new pixel is the same whichever band makes it.
bool ResampleDibRows(const uint8_t* dib, int32_t dstW, int32_t dstH, const Rect& part, bool keepGrey,
                     const Resampler::RowSink& sink) {
  const bool grey = keepGrey && IsGreyDib(dib);
  const auto& h = *reinterpret_cast<const BitmapInfoHeader*>(dib);
  // The pixels made and the source pixels read, about: worth a thread from a million.
  const double made = static_cast<double>(Width(part)) * Height(part);
  const double read = made * h.biWidth / std::max(dstW, 1) * std::abs(static_cast<double>(h.biHeight)) / std::max(dstH, 1);
  if (Height(part) < 64 || made + read < (1 << 20) || std::thread::hardware_concurrency() < 2)
    return ResampleBand(dib, dstW, dstH, part, grey, sink);
  Rect upper = part, lower = part;
  upper.bottom = lower.top = part.top + Height(part) / 2;
  bool lowerMade = false;
  std::thread other;
  try {
    other = std::thread([&] {
      try {
        lowerMade = ResampleBand(dib, dstW, dstH, lower, grey, sink);
      } catch (const std::bad_alloc&) {  // nothing may leave a thread
      }
    });
  } catch (const std::system_error&) {
    return ResampleBand(dib, dstW, dstH, part, grey, sink);
  }
  bool upperMade = false;
  try {
    upperMade = ResampleBand(dib, dstW, dstH, upper, grey, sink);
  } catch (const std::bad_alloc&) {  // the other thread is waited for all the same
  }
  other.join();
  return upperMade && lowerMade;
}

#if defined(__x86_64__) && defined(__GNUC__)
namespace {
// Four pixels a step, each three bytes spread to four by one shuffle.
__attribute__((target("avx2"))) int32_t BgrRowToPixelsAvx2(const uint8_t* row, int32_t width, uint32_t alpha,
                                                            uint32_t* pixels) {
  const __m128i spread = _mm_setr_epi8(0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1);
  const __m128i top = _mm_set1_epi32(static_cast<int32_t>(alpha));
  int32_t x = 0;
  for (; x + 6 <= width; x += 4) {  // sixteen bytes read: four pixels and four of the next two
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(row + 3 * x));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(pixels + x), _mm_or_si128(_mm_shuffle_epi8(v, spread), top));
  }
  return x;
}
}  // namespace
#endif

void BgrRowToPixels(const uint8_t* row, int32_t width, uint32_t alpha, uint32_t* pixels) {
  int32_t x = 0;
#if defined(__x86_64__) && defined(__GNUC__)
  if (HasAvx2()) x = BgrRowToPixelsAvx2(row, width, alpha, pixels);
#endif
  for (row += 3 * x; x < width; ++x, row += 3) {
    uint32_t v;
    std::memcpy(&v, row, 4);  // little-endian: blue, green, red and the next pixel's blue
    pixels[x] = alpha | (v & 0xFFFFFF);
  }
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
