// The resampler: fine patterns reduced to even grey from every depth and row
// order, smooth enlargement, parts that match the whole, and photographs
// close to ImageMagick's Lanczos.
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>

#include "base/dib.h"
#include "pictures/resampler.h"
#include "test_photos.h"
#include "test_support.h"

namespace {

enum Pattern { kColumns, kRows, kChecker };
bool Lit(Pattern p, int x, int y) { return p == kColumns ? x % 2 : p == kRows ? y % 2 : (x + y) % 2; }

// A w x h Dib of `bits` per pixel showing the pattern in black and white,
// rows stored top down when asked; `grey` gives an 8-bit Dib a grey table.
BlockHandle PatternDib(Pattern p, int bits, bool grey, bool topDown, int w, int h) {
  BlockHandle dib = DibCreate(w, topDown ? -h : h, static_cast<uint16_t>(bits));
  BlockLock lock(dib);
  RgbQuad* table = DibColourTable(lock.bytes());
  for (uint32_t i = 0; i < DibColourTableEntries(bits); ++i) {
    const uint8_t v = grey ? uint8_t(i) : i == 1 ? 255 : i == 0 ? 0 : 99;
    table[i] = {v, v, v, 0};
  }
  const unsigned on = bits <= 8 ? (grey ? 255 : 1) : bits == 16 ? 0x7FFF : 0xFFFFFFFF;
  for (int y = 0; y < h; ++y) {
    uint8_t* row = DibBits(lock.bytes()) + DibRowStride(w, bits) * (topDown ? y : h - 1 - y);
    for (int x = 0; x < w; ++x) {
      const unsigned v = Lit(p, x, y) ? on : 0;
      if (bits < 8) row[x * bits / 8] |= uint8_t(v << (8 - bits * (x % (8 / bits) + 1)));
      else
        for (int k = 0; k < bits / 8; ++k) row[x * bits / 8 + k] = uint8_t(v >> 8 * k);
    }
  }
  return dib;
}

struct Stats {
  double mean, sd;
};
// Of one channel's values inside a border of `margin` pixels.
Stats GreyStats(const RgbPixels& p, int margin) {
  double sum = 0, squares = 0, n = 0;
  for (int y = margin; y < p.height - margin; ++y)
    for (int x = margin; x < p.width - margin; ++x) {
      const double v = p.rgb[(size_t(y) * p.width + x) * 3];
      sum += v, squares += v * v, ++n;
    }
  const double mean = sum / n;
  return {mean, std::sqrt(std::max(0.0, squares / n - mean * mean))};
}

double Psnr(const RgbPixels& a, const RgbPixels& b) {
  if (a.rgb.size() != b.rgb.size() || a.rgb.empty()) return 0;
  double squares = 0;
  for (size_t i = 0; i < a.rgb.size(); ++i) squares += (double(a.rgb[i]) - b.rgb[i]) * (double(a.rgb[i]) - b.rgb[i]);
  return 10 * std::log10(255.0 * 255.0 / (squares / double(a.rgb.size())));
}

// The pixels of a 24-bit Dib made from them, resampled to w x h.
RgbPixels Resampled(const RgbPixels& source, int w, int h) {
  BlockHandle dib = DibCreate(source.width, source.height, 24);
  {
    BlockLock lock(dib);
    for (int y = 0; y < source.height; ++y) {
      uint8_t* row = DibBits(lock.bytes()) + DibRowStride(source.width, 24) * (source.height - 1 - y);
      const uint8_t* in = source.rgb.data() + size_t(y) * source.width * 3;
      for (int x = 0; x < source.width; ++x)
        for (int k = 0; k < 3; ++k) row[3 * x + k] = in[3 * x + 2 - k];
    }
  }
  BlockHandle out = ResampleDib(dib, w, h);
  RgbPixels pixels = DibPixels(out);
  GlobalBlockFree(dib);
  GlobalBlockFree(out);
  return pixels;
}

}  // namespace

TEST_F(QuernalTest, ResamplerTurnsFinePatternsToEvenGreyFromEveryDepthAndRowOrder) {
  const struct {
    int bits;
    bool grey;
  } depths[] = {{1, false}, {4, false}, {8, false}, {8, true}, {16, false}, {24, false}, {32, false}};
  for (Pattern p : {kColumns, kRows, kChecker})
    for (const auto& d : depths)
      for (bool topDown : {false, true}) {
        SCOPED_TRACE(testing::Message() << "pattern " << p << ", " << d.bits << " bits" << (d.grey ? " grey" : "")
                                        << (topDown ? ", top down" : ""));
        BlockHandle dib = PatternDib(p, d.bits, d.grey, topDown, 230, 161);
        // At its own size, every pixel as it was, the top row on top.
        BlockHandle same = ResampleDib(dib, 230, 161);
        const RgbPixels kept = DibPixels(same);
        ASSERT_EQ(kept.width, 230);
        for (int y = 0; y < 161; y += 7)
          for (int x = 0; x < 230; x += 3)
            ASSERT_EQ(kept.rgb[(size_t(y) * 230 + x) * 3 + 1], Lit(p, x, y) ? 255 : 0) << x << "," << y;
        // Reduced 2.3 and 2.9 times: flat grey, no beats.
        for (int w : {100, 80}) {
          BlockHandle small = ResampleDib(dib, w, w * 7 / 10);
          const Stats s = GreyStats(DibPixels(small), 1);
          EXPECT_NEAR(s.mean, 127.5, 2) << w;
          EXPECT_LE(s.sd, 2) << w;
          GlobalBlockFree(small);
        }
        GlobalBlockFree(dib);
        GlobalBlockFree(same);
      }

  // Enlarged, an edge turns into a smooth ramp rather than a step.
  BlockHandle edge = PatternDib(kColumns, 24, false, false, 2, 1);
  BlockHandle wide = ResampleDib(edge, 40, 3);
  const RgbPixels ramp = DibPixels(wide);
  int steepest = 0, levels = 0;
  for (int x = 1; x < 40; ++x) {
    steepest = std::max(steepest, std::abs(ramp.rgb[3 * x] - ramp.rgb[3 * x - 3]));
    levels += ramp.rgb[3 * x] != ramp.rgb[3 * x - 3];
  }
  EXPECT_LE(steepest, 40);
  EXPECT_GE(levels, 10);

  // A flat picture stays exactly flat at every scale, whole or in parts
  // (enlarged 3 times, rows on a source row once dropped their upper
  // neighbour's zero weight and the next rows started too late).
  BlockHandle flat = DibCreate(8, 6, 24);
  {
    BlockLock lock(flat);
    std::memset(DibBits(lock.bytes()), 200, DibRowStride(8, 24) * 6);
  }
  for (const int scale : {30, 20, 15, 11, 4}) {  // tenths
    BlockHandle resampled = ResampleDib(flat, 8 * scale / 10, 6 * scale / 10);
    const RgbPixels pixels = DibPixels(resampled);
    for (size_t i = 0; i < pixels.rgb.size(); ++i) ASSERT_EQ(pixels.rgb[i], 200) << scale << ": " << i;
    GlobalBlockFree(resampled);
    BlockLock lock(flat);
    for (int top = 0; top < 6 * scale / 10; ++top)
      ASSERT_TRUE(ResampleDibRows(lock.bytes(), 8 * scale / 10, 6 * scale / 10, Rect{0, top, 1, top + 1}, false,
                                  [&](int32_t y, const uint8_t* row) { ASSERT_EQ(row[0], 200) << scale << ": " << y; }));
  }
  GlobalBlockFree(flat);

  // A part of the new picture is that part of the whole (a picture of
  // uneven bytes, so a part shifted by a source pixel shows).
  BlockHandle checker = DibCreate(57, 43, 24);
  {
    BlockLock lock(checker);
    for (size_t i = 0; i < DibRowStride(57, 24) * 43; ++i) DibBits(lock.bytes())[i] = uint8_t(i * 37 % 251);
  }
  for (const Rect part : {Rect{3, 5, 11, 9}, Rect{0, 0, 1, 1}, Rect{12, 10, 19, 14}})
    for (int scale : {3, 30}) {  // reduced and enlarged
      const int w = 57 * 10 / scale, h = 43 * 10 / scale;
      BlockHandle resampled = ResampleDib(checker, w, h);
      const RgbPixels whole = DibPixels(resampled);
      GlobalBlockFree(resampled);
      BlockLock lock(checker);
      int rows = 0;
      ASSERT_TRUE(ResampleDibRows(lock.bytes(), w, h, part, false, [&](int32_t y, const uint8_t* row) {
        for (int x = 0; x < Width(part); ++x)
          ASSERT_EQ(row[3 * x + 1], whole.rgb[(size_t(y) * w + part.left + x) * 3 + 1]) << x << "," << y;
        ++rows;
      }));
      EXPECT_EQ(rows, Height(part));
    }
  GlobalBlockFree(checker);
  GlobalBlockFree(edge);
  GlobalBlockFree(wide);
}

#ifndef _WIN32
TEST_F(QuernalTest, ResampledPhotographsAreCloseToImageMagicksLanczos) {
  const TempDir dir;
  const std::string photo = dir.File("photo.ppm"), magick = dir.File("magick.ppm");
  // Fractal clouds with fine detail, like foliage in a photograph.
  ASSERT_TRUE(Shell("convert -seed 7 -size 920x690 plasma:fractal -blur 0x0.7 -depth 8 " + photo));
  const RgbPixels source = ReadPpm(photo);
  ASSERT_EQ(source.width, 920);
  const struct {
    int w, h;
  } sizes[] = {{400, 300}, {620, 465}, {1400, 1050}};
  for (const auto& s : sizes) {
    SCOPED_TRACE(testing::Message() << s.w << " x " << s.h);
    const std::string size = std::to_string(s.w) + "x" + std::to_string(s.h);
    ASSERT_TRUE(Shell("convert " + photo + " -filter Lanczos -resize " + size + "! -depth 8 " + magick));
    const double psnr = Psnr(Resampled(source, s.w, s.h), ReadPpm(magick));
    std::printf("%s: %.1f dB\n", size.c_str(), psnr);
    EXPECT_GE(psnr, 40);
  }
}
#endif
