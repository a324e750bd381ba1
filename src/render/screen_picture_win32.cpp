#include "render/screen_picture_win32.h"

#include <algorithm>
#include <cstring>

#include "pictures/resampler.h"

namespace {

// A 24-bit top-down bitmap of `part` of `dib` resampled to width x height,
// and where its pixels are; null when memory or the Dib fails.
HBITMAP ResampledPart(HDC dc, const uint8_t* dib, int32_t width, int32_t height, const Rect& part) {
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = Width(part);
  info.bmiHeader.biHeight = -Height(part);
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 24;
  void* bits = nullptr;
  HBITMAP bitmap = CreateDIBSection(dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  if (!bitmap) return nullptr;
  GdiFlush();
  const size_t stride = (static_cast<size_t>(Width(part)) * 3 + 3) & ~size_t{3}, bytes = Width(part) * size_t{3};
  uint8_t* rows = static_cast<uint8_t*>(bits);
  if (!ResampleDibRows(dib, width, height, part, false, [&](int32_t y, const uint8_t* row) {
        std::memcpy(rows + stride * static_cast<size_t>(y - part.top), row, bytes);
      })) {
    DeleteObject(bitmap);
    return nullptr;
  }
  return bitmap;
}

// On a display of fewer than 24 bits, the tile in the display's own format,
// so each copy onto it is a plain copy; true colour keeps the 24 bits.
HBITMAP InDisplayFormat(HDC dc, HBITMAP tile, int32_t width, int32_t height) {
  if (GetDeviceCaps(dc, BITSPIXEL) * GetDeviceCaps(dc, PLANES) >= 24) return tile;
  HBITMAP device = CreateCompatibleBitmap(dc, width, height);
  HDC from = CreateCompatibleDC(dc), to = CreateCompatibleDC(dc);
  if (device && from && to) {
    HGDIOBJ a = SelectObject(from, tile), b = SelectObject(to, device);
    BitBlt(to, 0, 0, width, height, from, 0, 0, SRCCOPY);
    SelectObject(from, a);
    SelectObject(to, b);
  }
  if (from) DeleteDC(from);
  if (to) DeleteDC(to);
  DeleteObject(tile);
  return device;
}

void Blit(HDC dc, HDC memory, HBITMAP bitmap, const Rect& at) {
  HGDIOBJ previous = SelectObject(memory, bitmap);
  BitBlt(dc, at.left, at.top, Width(at), Height(at), memory, 0, 0, SRCCOPY);
  SelectObject(memory, previous);
}

// The part of {0, 0, width, height} that the clip box of `dc` shows; false
// when none.
bool ShownPart(HDC dc, int32_t width, int32_t height, Rect* part) {
  RECT shown;
  if (GetClipBox(dc, &shown) <= NULLREGION) return false;
  *part = {std::clamp<int32_t>(shown.left, 0, width), std::clamp<int32_t>(shown.top, 0, height),
           std::clamp<int32_t>(shown.right, 0, width), std::clamp<int32_t>(shown.bottom, 0, height)};
  return Width(*part) > 0 && Height(*part) > 0;
}

}  // namespace

void DrawShownPart(HDC dc, const uint8_t* dib, int32_t width, int32_t height) {
  Rect part;
  if (!ShownPart(dc, width, height, &part)) return;
  HBITMAP bitmap = ResampledPart(dc, dib, width, height, part);
  if (!bitmap) return;
  if (HDC memory = CreateCompatibleDC(dc)) {
    Blit(dc, memory, bitmap, part);
    DeleteDC(memory);
  }
  DeleteObject(bitmap);
}

bool ScreenPictureCache::Draw(HDC dc, BlockHandle dib, const uint8_t* bytes, int32_t width, int32_t height) {
  const uint64_t serial = GlobalBlockSerial(dib);
  if (dib != dib_ || serial != serial_ || width != width_ || height != height_) {
    Drop();
    if (width <= 0 || height <= 0) return false;
    dib_ = dib, serial_ = serial, width_ = width, height_ = height;
    columns_ = (width + kTile - 1) / kTile;
    tiles_.assign(static_cast<size_t>(columns_) * ((height + kTile - 1) / kTile), nullptr);
  }
  Rect shown;
  if (!ShownPart(dc, width, height, &shown)) return true;
  HDC memory = CreateCompatibleDC(dc);
  if (!memory) return false;
  bool made = false, drawn = true;
  for (int32_t y = shown.top / kTile * kTile; drawn && y < shown.bottom; y += kTile) {
    for (int32_t x = shown.left / kTile * kTile; drawn && x < shown.right; x += kTile) {
      const Rect tile = {x, y, std::min(x + kTile, width), std::min(y + kTile, height)};
      HBITMAP& kept = tiles_[static_cast<size_t>(y / kTile) * columns_ + x / kTile];
      if (!kept) {
        if (HBITMAP made24 = ResampledPart(dc, bytes, width, height, tile))
          kept = InDisplayFormat(dc, made24, Width(tile), Height(tile));
        made = true;
      }
      drawn = kept != nullptr;
      if (drawn) Blit(dc, memory, kept, tile);
    }
  }
  DeleteDC(memory);
  if (made) ++made_;
  return drawn;
}

void ScreenPictureCache::Drop() {
  for (HBITMAP tile : tiles_)
    if (tile) DeleteObject(tile);
  tiles_.clear();
  dib_ = 0;
  serial_ = 0;
  width_ = height_ = columns_ = 0;
}
