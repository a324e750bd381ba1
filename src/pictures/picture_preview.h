// What the picture-open dialog shows of a picture: a true-colour copy at the
// size of its preview box, and a line of facts about it.
#pragma once
#include <cstdint>
#include <string>

#include "base/global_block.h"

// A new bottom-up 24-bit Dib of `width` x `height` showing `dib` (any depth
// the program stores) resampled by area: each new pixel is the average of
// the part of the picture it covers, so shrinking smooths and enlarging
// repeats pixels. Palette pictures come out in their own colours. 0 when
// `dib` is not a usable Dib, a side is below 1 or memory runs out.
BlockHandle DibResampled(BlockHandle dib, int32_t width, int32_t height);
// The picture at `percent` of its size in both directions (at least a
// pixel each way), as DibResampled makes it.
BlockHandle DibScaledByPercent(BlockHandle dib, int32_t percent);
// The largest whole percentage at which a w x h picture fits a box of
// boxW x boxH: the smaller of the two ratios.
int32_t FitPercent(int32_t boxW, int32_t boxH, int32_t w, int32_t h);
// 16777216 as "16,777,216".
std::string WithThousands(uint64_t n);
// "Width: %d\nDepth: %d\nColors: %s" (the height shows as the depth).
std::string PictureFacts(int32_t width, int32_t height, uint16_t bitCount);
