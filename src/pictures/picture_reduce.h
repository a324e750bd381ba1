// Reducing a picture by exact area averaging: each new pixel is the average
// of the part of the picture it covers, the pixels at its edges weighted by
// the fraction of them it covers, so no reduction leaves beats or stripes.
// Rows come in one at a time, so a picture being decoded never needs to be
// held whole at its full size.
#pragma once
#include <cstdint>
#include <memory>
#include <vector>

#include "base/global_block.h"

// The size of a w x h picture whose longer side is brought down to
// `longest`, keeping its shape (each side at least 1); w x h when it already
// fits or `longest` is 0.
void ReducedSize(int32_t w, int32_t h, int32_t longest, int32_t* outW, int32_t* outH);

class AreaReducer {
 public:
  // Rows of srcW pixels of `channels` bytes (1 grey, 3 blue-green-red)
  // become a new Dib of dstW x dstH, 8-bit grey or 24-bit. A destination
  // side larger than the source's is taken as the source's.
  AreaReducer(int32_t srcW, int32_t srcH, int32_t dstW, int32_t dstH, int channels);
  ~AreaReducer();
  AreaReducer(const AreaReducer&) = delete;
  AreaReducer& operator=(const AreaReducer&) = delete;

  // False when the Dib or the working rows could not be had.
  bool ok() const { return dib_ != 0; }
  // The next source row, top row first; rows past the last are ignored.
  void AddRow(const uint8_t* row);
  // The finished Dib, now the caller's; 0 when not every row came.
  BlockHandle Finish();

 private:
  void Emit(const float* sums);

  int32_t srcW_, srcH_, dstW_, dstH_;
  int channels_;
  BlockHandle dib_ = 0;
  uint8_t* bits_ = nullptr;
  uint64_t stride_ = 0;
  int32_t rowsIn_ = 0;
  int32_t rowsOut_ = 0;
  // Columns: the first source pixel of each new one, how many, their weights.
  std::vector<int32_t> first_, count_;
  std::vector<uint32_t> weights_;
  std::vector<uint32_t> across_;     // one source row averaged across
  std::vector<float> current_, next_;  // the new rows being summed
};

// Row `y` (0 at the top) of a Dib's pixels, any depth the program stores,
// as blue, green, red triples: `out` holds 3 x width bytes.
void DibRowBgr(const uint8_t* dib, int32_t y, uint8_t* out);

// A new Dib of `dib` (any depth the program stores) reduced to dstW x dstH
// by area averaging: 24-bit, or 8-bit grey for a grey picture. 0 when `dib`
// is not a usable Dib or memory runs out.
BlockHandle DibReduced(BlockHandle dib, int32_t dstW, int32_t dstH);
