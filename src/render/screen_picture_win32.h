// Pictures on the screen, made by the program's own resampler a part at a
// time: only what the window shows is ever made.
//
// GDI's HALFTONE stretch is not used for the view: Wine stretches a clipped
// part a little differently from the whole, so a part made alone could not
// match the rest, and a zoomed photograph had to be stretched whole before
// anything showed (a quarter of a second at 800 %). The resampler makes any
// part exactly as the whole would have it.
//
// The screen's canvas keeps the picture it last drew at the size the page
// shows it, in tiles made when a paint first shows them: later paints and
// scrolls copy them.
#pragma once
#include <windows.h>

#include <cstdint>
#include <vector>

#include "base/global_block.h"

// Draws the part of `dib` (its bytes), resampled to width x height at
// {0, 0} of `dc`, that the clip box of `dc` shows; nothing else is made.
void DrawShownPart(HDC dc, const uint8_t* dib, int32_t width, int32_t height);

// One picture at one size, kept between paints in tiles. It belongs to a
// window: the window drops it when it closes.
class ScreenPictureCache {
 public:
  ScreenPictureCache() = default;
  ~ScreenPictureCache() { Drop(); }
  ScreenPictureCache(const ScreenPictureCache&) = delete;
  ScreenPictureCache& operator=(const ScreenPictureCache&) = delete;

  // Draws what the clip box of `dc` shows of the picture at {0, 0, width,
  // height} from the kept tiles, making those it lacks; all are let go first
  // when the picture (its block or the block's bytes) or the size is not
  // the one kept. False when a tile could not be made.
  bool Draw(HDC dc, BlockHandle dib, const uint8_t* bytes, int32_t width, int32_t height);
  void Drop();
  // How many paints had to make tiles: a test sees whether a paint made any.
  int made() const { return made_; }

  // The side of a tile: the tiles a window shows are not much more than the
  // window, and a page has few of them.
  static constexpr int32_t kTile = 128;

 private:
  std::vector<HBITMAP> tiles_;  // row by row, null where not made yet
  int32_t columns_ = 0;
  BlockHandle dib_ = 0;
  uint64_t serial_ = 0;
  int32_t width_ = 0, height_ = 0;
  int made_ = 0;
};
