// Pictures on the screen: drawn through a bitmap in the display's format,
// stretched with averaging so that reduced photographs stay smooth.
//
// Stretching a 12-megapixel photograph costs most of a second under Wine, on
// every paint. The screen's canvas therefore keeps the picture it last drew,
// already stretched to the size the page shows it at: later paints copy it.
// The copy is made exactly as the picture would be stretched onto the page,
// so the pixels are the same either way.
#pragma once
#include <windows.h>

#include <cstdint>

#include "base/global_block.h"

struct DibInfo;

// Stretches the rows `bits` described by `info` onto {x, y, width, height}
// of `dc`, taking source rows sourceTop.. (counted from the top).
void StretchToScreen(HDC dc, const DibInfo& info, const void* bits, int32_t x, int32_t y, int32_t width,
                     int32_t height, int32_t sourceX, int32_t sourceTop, int32_t sourceW, int32_t sourceH);

// One picture stretched to one size, kept between paints. It belongs to a
// window: the window drops it when it closes.
class ScreenPictureCache {
 public:
  ScreenPictureCache() = default;
  ~ScreenPictureCache() { Drop(); }
  ScreenPictureCache(const ScreenPictureCache&) = delete;
  ScreenPictureCache& operator=(const ScreenPictureCache&) = delete;

  // Draws the picture at {0, 0, width, height} of `dc` from the kept copy,
  // making it first when the picture (its block or the block's bytes) or the
  // size is not the one kept. False when no copy could be made.
  bool Draw(HDC dc, BlockHandle dib, const DibInfo& info, const void* bits, int32_t width, int32_t height);
  void Drop();
  bool Holds() const { return bitmap_ != nullptr; }
  // How many copies were made: a test sees whether a paint made one.
  int made() const { return made_; }

 private:
  HBITMAP bitmap_ = nullptr;
  BlockHandle dib_ = 0;
  uint64_t serial_ = 0;
  int32_t width_ = 0, height_ = 0;
  int made_ = 0;
};
