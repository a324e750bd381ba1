#include "pictures/picture_crop.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "base/dib.h"

namespace {

// A box with no area (paddings larger than the page) gives the picture's own shape.
CropShape Usable(const CropShape& s) {
  if (s.boxW > 0 && s.boxH > 0) return s;
  return {s.pictureW, s.pictureH, s.pictureW, s.pictureH};
}

int64_t Clamp(int64_t v, int64_t low, int64_t high) { return std::max(low, std::min(v, high)); }

// The largest width whose frame is at most `height` high.
int64_t WidthForHeight(const CropShape& s, int64_t height) {
  int64_t w = height * s.boxW / s.boxH + 1;
  while (w > 1 && FrameHeightFor(s, static_cast<int32_t>(std::min<int64_t>(w, INT32_MAX))) > height) --w;
  return std::max<int64_t>(w, 1);
}

}  // namespace

int32_t FrameHeightFor(const CropShape& shape, int32_t width) {
  const CropShape s = Usable(shape);
  const int64_t h = (int64_t{width} * s.boxH * 2 + s.boxW) / (2 * int64_t{s.boxW});
  return static_cast<int32_t>(std::max<int64_t>(h, 1));
}

int32_t LargestFrameWidth(const CropShape& shape) {
  const CropShape s = Usable(shape);
  return static_cast<int32_t>(std::min<int64_t>(s.pictureW, WidthForHeight(s, s.pictureH)));
}

CropFrame FrameAtFocus(const CropShape& shape, int focusX, int focusY) {
  const int32_t w = LargestFrameWidth(shape), h = FrameHeightFor(shape, w);
  const int64_t cx = int64_t{shape.pictureW} * Clamp(focusX, 0, 100) / 100;
  const int64_t cy = int64_t{shape.pictureH} * Clamp(focusY, 0, 100) / 100;
  return MovedFrame(shape, {0, 0, w, h}, cx - w / 2, cy - h / 2);
}

CropFrame MovedFrame(const CropShape& shape, const CropFrame& f, int64_t dx, int64_t dy) {
  return {static_cast<int32_t>(Clamp(f.x + dx, 0, std::max(0, shape.pictureW - f.width))),
          static_cast<int32_t>(Clamp(f.y + dy, 0, std::max(0, shape.pictureH - f.height))), f.width, f.height};
}

CropFrame ResizedFrame(const CropShape& shape, const CropFrame& f, int64_t width, int anchorX, int anchorY) {
  const CropShape s = Usable(shape);
  // The anchor in half pixels, so that a centre is exact.
  const int64_t ax2 = 2 * int64_t{f.x} + anchorX * int64_t{f.width};
  const int64_t ay2 = 2 * int64_t{f.y} + anchorY * int64_t{f.height};
  // A corner kept in place limits the frame to the room beyond it.
  const int64_t roomW = anchorX == 0 ? s.pictureW - f.x : anchorX == 2 ? ax2 / 2 : s.pictureW;
  const int64_t roomH = anchorY == 0 ? s.pictureH - f.y : anchorY == 2 ? ay2 / 2 : s.pictureH;
  const int64_t largest = std::min<int64_t>({LargestFrameWidth(s), roomW, WidthForHeight(s, roomH)});
  const int64_t w = Clamp(width, std::min<int64_t>(kSmallestFrame, largest), largest);
  const int32_t h = FrameHeightFor(s, static_cast<int32_t>(w));
  const CropFrame resized{static_cast<int32_t>((ax2 - anchorX * w) / 2), static_cast<int32_t>((ay2 - anchorY * int64_t{h}) / 2),
                          static_cast<int32_t>(w), h};
  return MovedFrame(s, resized, 0, 0);
}

FrameHit HitFrame(const CropFrame& f, int64_t x, int64_t y, int64_t reach) {
  const int64_t right = int64_t{f.x} + f.width, bottom = int64_t{f.y} + f.height;
  for (int corner = 0; corner < 4; ++corner) {
    const int64_t cx = corner & 1 ? right : f.x, cy = corner & 2 ? bottom : f.y;
    if (std::llabs(x - cx) <= reach && std::llabs(y - cy) <= reach)
      return static_cast<FrameHit>(static_cast<int>(FrameHit::kCorner0) + corner);
  }
  return x >= f.x && x < right && y >= f.y && y < bottom ? FrameHit::kInside : FrameHit::kNone;
}

CropFrame DraggedFrame(const CropShape& shape, const CropFrame& start, FrameHit hit, int64_t dx, int64_t dy) {
  if (hit == FrameHit::kNone) return start;
  if (hit == FrameHit::kInside) return MovedFrame(shape, start, dx, dy);
  const int corner = static_cast<int>(hit) - static_cast<int>(FrameHit::kCorner0);
  const bool right = corner & 1, bottom = corner & 2;
  // The corner follows whichever of the pointer's two moves changes the
  // frame more, growing or shrinking it.
  const int64_t byX = start.width + (right ? dx : -dx);
  const int64_t byY = WidthForHeight(Usable(shape), std::max<int64_t>(1, start.height + (bottom ? dy : -dy)));
  const int64_t width = std::llabs(byX - start.width) >= std::llabs(byY - start.width) ? byX : byY;
  return ResizedFrame(shape, start, width, right ? 0 : 2, bottom ? 0 : 2);
}

CropFrame KeyedFrame(const CropShape& shape, const CropFrame& f, FrameKey key, bool shift) {
  const int64_t step = std::max(1, std::max(shape.pictureW, shape.pictureH) / 100);
  const bool forward = key == FrameKey::kRight || key == FrameKey::kDown;
  if (shift) return ResizedFrame(shape, f, f.width + (forward ? 2 : -2) * step, 1, 1);
  const bool across = key == FrameKey::kLeft || key == FrameKey::kRight;
  const int64_t d = forward ? step : -step;
  return MovedFrame(shape, f, across ? d : 0, across ? 0 : d);
}

bool DibSize(BlockHandle dib, int32_t* width, int32_t* height) {
  if (!dib || !DibBlockIsValid(dib)) return false;
  BlockLock lock(dib);
  const auto* h = lock.as<BitmapInfoHeader>();
  *width = h->biWidth;
  *height = static_cast<int32_t>(std::abs(int64_t{h->biHeight}));
  return true;
}

BlockHandle DibCropped(BlockHandle dib, const CropFrame& f) {
  if (!dib || !DibBlockIsValid(dib)) return 0;
  BlockLock source(dib);
  uint8_t* from = source.bytes();
  const BitmapInfoHeader header = *reinterpret_cast<const BitmapInfoHeader*>(from);
  const int64_t pictureH = std::abs(int64_t{header.biHeight});
  if (f.x < 0 || f.y < 0 || f.width < 1 || f.height < 1 || int64_t{f.x} + f.width > header.biWidth ||
      int64_t{f.y} + f.height > pictureH)
    return 0;
  const BlockHandle cropped = DibCreate(f.width, f.height, header.biBitCount);
  if (!cropped) return 0;
  BlockLock target(cropped);
  uint8_t* to = target.bytes();
  auto* out = reinterpret_cast<BitmapInfoHeader*>(to);
  out->biXPelsPerMeter = header.biXPelsPerMeter;
  out->biYPelsPerMeter = header.biYPelsPerMeter;
  std::memcpy(DibColourTable(to), DibColourTable(from), DibColourTableEntries(header.biBitCount) * sizeof(RgbQuad));
  const int bits = header.biBitCount;
  const uint64_t fromStride = DibRowStride(header.biWidth, bits), toStride = DibRowStride(f.width, bits);
  for (int64_t row = 0; row < f.height; ++row) {
    const int64_t picturedRow = f.y + row;  // from the top
    const uint8_t* src = DibBits(from) + fromStride * (header.biHeight < 0 ? picturedRow : pictureH - 1 - picturedRow);
    uint8_t* dst = DibBits(to) + toStride * (f.height - 1 - row);
    if (bits >= 8) {
      std::memcpy(dst, src + int64_t{f.x} * (bits / 8), static_cast<size_t>(f.width) * (bits / 8));
      continue;
    }
    // 1 and 4 bits: pixels packed from the high bits of each byte.
    const int perByte = 8 / bits, mask = (1 << bits) - 1;
    for (int64_t i = 0; i < f.width; ++i) {
      const int64_t at = f.x + i;
      const int value = src[at / perByte] >> (8 - bits * (at % perByte + 1)) & mask;
      dst[i / perByte] |= static_cast<uint8_t>(value << (8 - bits * (i % perByte + 1)));
    }
  }
  return cropped;
}
