// A benchmark-only copy of the box averaging the Cairo canvas used to shrink
// pictures with (before the resampler), for 24-bit Dibs, kept to time the
// resampler against it side by side. Not used by the program.
#pragma once
#include <cstdint>

#include "base/geometry.h"

// The part `part` of the 24-bit Dib shrunk to width x height by averaging
// every source pixel into the output pixel it falls in, into `image` (rows
// `stride` bytes apart) as Cairo's pixels with `alpha` in their top byte.
void OldBoxShrinkDib(const uint8_t* dib, int width, int height, const Rect& part, uint8_t* image, int stride,
                     uint32_t alpha);
