// What the picture-open dialog shows of a picture: a resampled copy at the
// size of its preview box, and a line of facts about it.
#pragma once
#include <cstdint>
#include <string>

#include "base/global_block.h"

// The picture at `percent` of its size in both directions (at least a
// pixel each way), resampled (ResampleDib): 24-bit, or 8-bit for grey.
BlockHandle DibScaledByPercent(BlockHandle dib, int32_t percent);
// The largest whole percentage at which a w x h picture fits a box of
// boxW x boxH: the smaller of the two ratios.
int32_t FitPercent(int32_t boxW, int32_t boxH, int32_t w, int32_t h);
// 16777216 as "16,777,216".
std::string WithThousands(uint64_t n);
// "Width: %d\nDepth: %d\nColors: %s" (the height shows as the depth).
std::string PictureFacts(int32_t width, int32_t height, uint16_t bitCount);
