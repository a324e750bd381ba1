// Resampling a picture to another size, for printing, PDF and PNG pages, the
// import and the previews. Reduction weighs each source pixel by the exact
// part of a smooth bell (a quadratic B-spline three new pixels wide) that
// falls on it, so fine lines and checkerboards turn into even grey without
// beats; reducing by two or more, each two by two source pixels are first
// added up exactly, which halves the work and only smooths a little more.
// Enlargement interpolates with Catmull-Rom. Rows come in one at a time, top row first, and go out
// one at a time, so memory stays a few rows however large the picture.
#pragma once
#include <cstdint>
#include <functional>
#include <vector>

#include "base/geometry.h"
#include "base/global_block.h"

// The size of a w x h picture whose longer side is brought down to
// `longest`, keeping its shape (each side at least 1); w x h when it already
// fits or `longest` is 0.
void ReducedSize(int32_t w, int32_t h, int32_t longest, int32_t* outW, int32_t* outH);

// Row `y` (0 at the top, whichever way the Dib stores its rows) of a Dib of
// any depth the program stores, palette colours looked up, as blue, green,
// red triples: `out` holds 3 x width bytes.
void DibRowBgr(const uint8_t* dib, int32_t y, uint8_t* out);

// One axis: for each new pixel, the source pixels it takes and their weights.
struct ResampleAxis {
  static constexpr int kWeightBits = 14;
  std::vector<int32_t> first, count;  // per new pixel
  std::vector<size_t> at;             // where its weights start
  std::vector<int16_t> weights;       // each new pixel's add up to 1 << kWeightBits
  int32_t sourceBegin = 0, sourceEnd = 0;  // the source pixels any of them takes
};
// The weights of new pixels [begin, end) of `to` made from `from` pixels;
// with `extent` the new pixels span only that much of them (the last pixel
// reaching past it, as a picture of odd width taken two pixels at a time).
ResampleAxis MakeResampleAxis(int32_t from, int32_t to, int32_t begin, int32_t end, double extent = 0);

class Resampler {
 public:
  // Receives new row `y` (of the whole new picture) of the part being made:
  // Width(part) pixels of `channels` bytes and a spare byte past them.
  using RowSink = std::function<void(int32_t y, const uint8_t* row)>;
  // Source rows of srcW pixels, each `step` bytes of which the first
  // `channels` (1 grey, 3 blue-green-red) are used, become the rows of
  // `part` of a dstW x dstH picture. With `rowsStay` the rows stay where
  // they are until every row has been added, and are read there.
  Resampler(int32_t srcW, int32_t srcH, int32_t dstW, int32_t dstH, const Rect& part, int channels, int step,
            RowSink sink, bool rowsStay = false);
  bool ok() const { return ok_; }
  // The source rows the part needs: [FirstRow(), EndRow()).
  int32_t FirstRow() const { return firstRow_; }
  int32_t EndRow() const { return endRow_; }
  // Source row `y`; rows come in increasing order, those not needed are ignored.
  void AddRow(int32_t y, const uint8_t* row);
  // Every row of the part has gone to the sink.
  bool Done() const { return ok_ && next_ >= Height(part_); }

 private:
  int16_t RowWeight(int32_t j, int32_t y) const;
  void Halve(const uint8_t* above, const uint8_t* below, int16_t* out);
  void Enter(int32_t y, const uint8_t* row);
  void AddHeldRows();
  void Emit(const int32_t* sums);

  Rect part_;
  int channels_, step_;
  RowSink sink_;
  bool ok_ = false;
  // Halving: rows_ and columns_ count source pixels two by two, whose
  // sums (four times a byte) are held in 16 bits.
  bool halve_ = false;
  int32_t srcH_ = 0, firstRow_ = 0, endRow_ = 0;
  size_t usedBytes_ = 0;                 // of a source row, from the first column used
  std::vector<int16_t> columnSums_, sideSums_;  // a pair of rows added, then each pixel to the next
  std::vector<uint8_t> upper_;           // the upper row of a pair, when rows do not stay
  const uint8_t* upperRow_ = nullptr;
  int32_t upperY_ = -1;
  ResampleAxis rows_, columns_;
  bool acrossTwo_ = false;  // two new pixels made at once (AVX2)
  int32_t pairsEach_ = 0;   // then the pairs each takes
  // The columns' weights two by two (an odd one with a 0), four copies of
  // each pair; with acrossTwo_, pair by pair for two new pixels together.
  std::vector<int32_t> columnPairs_;
  int32_t next_ = 0;     // the next row of the part to go out (from its top)
  int32_t entered_ = 0;  // rows of the part whose sums have been started
  int32_t pending_ = 1;  // rows of the part summed at once, at most
  std::vector<int32_t> sums_;  // `pending_` rows of the source columns needed
  static constexpr int kHeld = 4;
  std::vector<uint8_t> held_;   // source rows waiting to be added four at once
  std::vector<int16_t> heldHalves_;  // the same when halving
  std::vector<int16_t> pairs_;  // they two by two, interleaved
  const uint8_t* heldRows_[kHeld] = {};
  int32_t heldY_[kHeld] = {};
  int heldCount_ = 0;
  bool rowsStay_;
  std::vector<int16_t> across_;   // a finished row of sums, scaled to 16 bits
  std::vector<int16_t> byPairs_;  // the same, each pixel beside the next
  std::vector<uint8_t> out_;
};

// Resamples the Dib (any depth the program stores, top-down or bottom-up) to
// dstW x dstH, making only the rows and columns of `part`; with `keepGrey` a
// Dib of grey levels comes out as one byte a pixel. False when the Dib is not
// usable or memory runs out. A large part is made on two threads: the sink
// may then be called from both at once, never twice for one row.
bool ResampleDibRows(const uint8_t* dib, int32_t dstW, int32_t dstH, const Rect& part, bool keepGrey,
                     const Resampler::RowSink& sink);

// A row of blue-green-red pixels from a RowSink (a spare byte past the
// last) as 32-bit pixels, red in the third byte, with `alpha` in the top one.
void BgrRowToPixels(const uint8_t* row, int32_t width, uint32_t alpha, uint32_t* pixels);

// A new bottom-up Dib of `dib` resampled to dstW x dstH: 24-bit, or 8-bit grey
// for a grey picture. 0 when `dib` is not a usable Dib, a side is below 1 or
// memory runs out.
BlockHandle ResampleDib(BlockHandle dib, int32_t dstW, int32_t dstH);

// A new Dib made from rows that come in one at a time (a picture being
// decoded is never held whole at full size).
class DibResampler {
 public:
  // Rows of srcW pixels of `channels` bytes (1 grey, 3 blue-green-red)
  // become a dstW x dstH Dib, 8-bit grey or 24-bit. A side larger than the
  // source's is taken as the source's: the import never enlarges.
  DibResampler(int32_t srcW, int32_t srcH, int32_t dstW, int32_t dstH, int channels);
  ~DibResampler();
  DibResampler(const DibResampler&) = delete;
  DibResampler& operator=(const DibResampler&) = delete;
  bool ok() const { return dib_ != 0 && resampler_.ok(); }
  // The next source row, top row first; rows past the last are ignored.
  void AddRow(const uint8_t* row);
  // The finished Dib, now the caller's; 0 when not every row came.
  BlockHandle Finish();

 private:
  BlockHandle dib_ = 0;
  uint8_t* bits_ = nullptr;
  uint64_t stride_ = 0;
  size_t rowBytes_ = 0;
  int32_t height_ = 0, rowsIn_ = 0;
  Resampler resampler_;
};
