// The EXIF Orientation tag: which way up a camera held the picture it
// stored. Read from the tag's own little directory, and applied to a Dib so
// that the picture comes out as every viewer shows it.
#pragma once
#include <cstddef>
#include <cstdint>

#include "base/global_block.h"

// The orientation 1..8 in EXIF data: a TIFF header ("II*\0" or "MM\0*") and
// its first directory, optionally after the "Exif\0\0" of a JPEG APP1
// segment. 1 (as stored) when the tag is absent or anything is damaged.
int ExifOrientation(const uint8_t* data, size_t size);

// True for orientations that swap width and height (5 to 8).
inline bool OrientationSwapsSides(int orientation) { return orientation >= 5 && orientation <= 8; }

// A new Dib of `dib` turned and mirrored as `orientation` says, of any bit
// count the program stores; `dib` itself for orientation 1 or a value out of
// range. On success `dib` is freed; 0 (and `dib` freed) when memory runs out.
BlockHandle DibOriented(BlockHandle dib, int orientation);
