// Cropping a picture to the shape of the box a page shows it in, so that it
// fills the box instead of being letterboxed: the frame the user moves and
// resizes over the picture, always of the box's shape and inside the
// picture, and the crop of a Dib to it.
#pragma once
#include <cstdint>

#include "base/global_block.h"

// A frame in the picture's pixels, from its top left corner.
struct CropFrame {
  int32_t x, y, width, height;
};
// The picture's size and the box's shape (any units; only the ratio counts).
struct CropShape {
  int32_t pictureW, pictureH, boxW, boxH;
};

// The frame's height for a width, in the box's shape (at least 1).
int32_t FrameHeightFor(const CropShape& shape, int32_t width);
// The largest frame that fits in the picture.
int32_t LargestFrameWidth(const CropShape& shape);
// The largest frame centred on a point given in percent of the picture
// (50, 50 the middle), moved only as far as keeps it inside; "Whole box".
CropFrame FrameAtFocus(const CropShape& shape, int focusX, int focusY);
// The frame moved by (dx, dy) pixels, stopping at the picture's edges.
CropFrame MovedFrame(const CropShape& shape, const CropFrame& frame, int64_t dx, int64_t dy);
// The frame given a new width, its height following the shape, the point at
// (anchorX, anchorY) halves of its size from its corner (0, 1 or 2 each)
// kept in place where it can be: as large as the picture allows, and never
// smaller than kSmallestFrame pixels across.
constexpr int32_t kSmallestFrame = 8;
CropFrame ResizedFrame(const CropShape& shape, const CropFrame& frame, int64_t width, int anchorX, int anchorY);

// What a point of the picture touches: nothing, the frame, or one of its
// corners within `reach` pixels (0 top left, 1 top right, 2 bottom left,
// 3 bottom right).
enum class FrameHit { kNone, kInside, kCorner0, kCorner1, kCorner2, kCorner3 };
FrameHit HitFrame(const CropFrame& frame, int64_t x, int64_t y, int64_t reach);
// The frame at the start of a drag of `hit` by (dx, dy) pixels of the
// picture: the frame moves, or the corner follows the pointer while the
// opposite corner stays.
CropFrame DraggedFrame(const CropShape& shape, const CropFrame& start, FrameHit hit, int64_t dx, int64_t dy);

// The keys: arrows move the frame a step, with Shift they resize it about
// its centre (right and down grow it, left and up shrink it). A step is a
// hundredth of the picture's longer side, at least a pixel.
enum class FrameKey { kLeft, kRight, kUp, kDown };
CropFrame KeyedFrame(const CropShape& shape, const CropFrame& frame, FrameKey key, bool shift);

// A new Dib of the frame of `dib` (any bit depth the program stores, its
// colour table kept, rows top-down or bottom-up), bottom-up; 0 when `dib`
// is not a usable Dib, the frame does not lie inside it, or memory runs out.
BlockHandle DibCropped(BlockHandle dib, const CropFrame& frame);
// The size of a usable Dib; false for anything else.
bool DibSize(BlockHandle dib, int32_t* width, int32_t* height);
