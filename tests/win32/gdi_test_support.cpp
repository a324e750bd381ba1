#include "gdi_test_support.h"

#include <cstring>

#include "base/dib.h"

namespace {

void PutPixels(uint8_t* row, int width, COLORREF colour) {
  for (int x = 0; x < width; ++x)
    row[x * 3] = GetBValue(colour), row[x * 3 + 1] = GetGValue(colour), row[x * 3 + 2] = GetRValue(colour);
}

}  // namespace

DibSurface::DibSurface(int width, int height, COLORREF fill)
    : width_(width), height_(height), stride_((width * 3 + 3) & ~3) {
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = width;
  info.bmiHeader.biHeight = -height;  // top-down: row y at bits_ + y * stride_
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 24;
  void* bits = nullptr;
  dc_ = CreateCompatibleDC(nullptr);
  bitmap_ = CreateDIBSection(dc_, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  bits_ = static_cast<uint8_t*>(bits);
  previous_ = SelectObject(dc_, bitmap_);
  for (int y = 0; y < height; ++y) PutPixels(bits_ + y * stride_, width, fill);
}

DibSurface::~DibSurface() {
  SelectObject(dc_, previous_);
  DeleteObject(bitmap_);
  DeleteDC(dc_);
}

COLORREF DibSurface::Pixel(int x, int y) const {
  GdiFlush();
  if (x < 0 || y < 0 || x >= width_ || y >= height_) return CLR_INVALID;
  const uint8_t* p = bits_ + y * stride_ + x * 3;
  return RGB(p[2], p[1], p[0]);
}

int DibSurface::Count(int left, int top, int right, int bottom, COLORREF colour) const {
  int n = 0;
  for (int y = top; y < bottom; ++y)
    for (int x = left; x < right; ++x) n += Pixel(x, y) == colour;
  return n;
}

int DibSurface::Differing(const DibSurface& other) const {
  GdiFlush();
  if (other.width_ != width_ || other.height_ != height_) return width_ * height_;
  int n = 0;
  for (int y = 0; y < height_; ++y)
    for (int x = 0; x < width_ * 3; x += 3)
      n += std::memcmp(bits_ + y * stride_ + x, other.bits_ + y * stride_ + x, 3) != 0;
  return n;
}

int LiveGdiObjects() {
  if (DWORD n = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS)) return static_cast<int>(n);
  int live = 0;
  for (ULONG_PTR index = 1; index < 0x10000; ++index)
    live += GetObjectType(reinterpret_cast<HGDIOBJ>(index)) != 0;
  return live;
}

BlockHandle SolidDib(int width, int height, COLORREF colour) {
  BlockHandle dib = DibCreate(width, height, 24);
  BlockLock lock(dib);
  for (int y = 0; y < height; ++y) PutPixels(DibBits(lock.bytes()) + y * DibRowStride(width, 24), width, colour);
  return dib;
}
