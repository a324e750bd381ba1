#include "render/screen_picture_win32.h"

#include <cstdlib>

#include "render/primitives_win32.h"

namespace {

// A device bitmap of the whole picture, in the format of `dc`.
HBITMAP DeviceBitmap(HDC dc, const DibInfo& info, const void* bits) {
  return CreateDIBitmap(dc, &info.header, CBM_INIT, bits, reinterpret_cast<const BITMAPINFO*>(&info),
                        DIB_RGB_COLORS);
}

// The kept copy: on a true-colour display 24 bits a pixel, a quarter less
// than the display's own format holds, and every colour the stretch makes;
// on displays of fewer colours, their own format, as the stretch onto them
// reduces the colours.
HBITMAP CopyBitmap(HDC dc, int32_t width, int32_t height) {
  if (GetDeviceCaps(dc, BITSPIXEL) * GetDeviceCaps(dc, PLANES) < 24) return CreateCompatibleBitmap(dc, width, height);
  BITMAPINFO info{};
  info.bmiHeader = {sizeof info.bmiHeader, width, height, 1, 24, BI_RGB};
  void* bits = nullptr;
  return CreateDIBSection(dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
}

}  // namespace

void StretchToScreen(HDC dc, const DibInfo& info, const void* bits, int32_t x, int32_t y, int32_t width,
                     int32_t height, int32_t sourceX, int32_t sourceTop, int32_t sourceW, int32_t sourceH) {
  HBITMAP bitmap = DeviceBitmap(dc, info, bits);
  if (!bitmap) return;
  HDC memory = CreateCompatibleDC(dc);
  if (memory) {
    HGDIOBJ previous = SelectObject(memory, bitmap);
    // The screen view stays on GDI's HALFTONE rather than the program's
    // resampler: it repaints at every scroll and zoom, where the display
    // driver's stretch is far quicker, and what a screen shows at a zoom is
    // not what prints (printing, PDF and PNG go through the resampler).
    const int oldMode = SetStretchBltMode(dc, HALFTONE);
    POINT oldBrushOrigin{0, 0};
    SetBrushOrgEx(dc, 0, 0, &oldBrushOrigin);  // HALFTONE needs the brush origin reset
    StretchBlt(dc, x, y, width, height, memory, sourceX, sourceTop, sourceW, sourceH, SRCCOPY);
    SetStretchBltMode(dc, oldMode);
    SetBrushOrgEx(dc, oldBrushOrigin.x, oldBrushOrigin.y, nullptr);
    SelectObject(memory, previous);
    DeleteDC(memory);
  }
  DeleteObject(bitmap);
}

bool ScreenPictureCache::Draw(HDC dc, BlockHandle dib, const DibInfo& info, const void* bits, int32_t width,
                              int32_t height) {
  const uint64_t serial = GlobalBlockSerial(dib);
  if (!bitmap_ || dib != dib_ || serial != serial_ || width != width_ || height != height_) {
    Drop();
    HDC memory = CreateCompatibleDC(dc);
    if (!memory) return false;
    HBITMAP bitmap = CopyBitmap(dc, width, height);
    if (bitmap) {
      HGDIOBJ previous = SelectObject(memory, bitmap);
      // Straight from the Dib: no device copy of all its pixels is needed.
      SetStretchBltMode(memory, HALFTONE);
      SetBrushOrgEx(memory, 0, 0, nullptr);
      StretchDIBits(memory, 0, 0, width, height, 0, 0, info.header.biWidth, std::abs(info.header.biHeight), bits,
                    reinterpret_cast<const BITMAPINFO*>(&info), DIB_RGB_COLORS, SRCCOPY);
      SelectObject(memory, previous);
    }
    DeleteDC(memory);
    if (!bitmap) return false;
    bitmap_ = bitmap, dib_ = dib, serial_ = serial, width_ = width, height_ = height;
    ++made_;
  }
  HDC memory = CreateCompatibleDC(dc);
  if (!memory) return false;
  HGDIOBJ previous = SelectObject(memory, bitmap_);
  BitBlt(dc, 0, 0, width, height, memory, 0, 0, SRCCOPY);
  SelectObject(memory, previous);
  DeleteDC(memory);
  return true;
}

void ScreenPictureCache::Drop() {
  if (bitmap_) DeleteObject(bitmap_);
  bitmap_ = nullptr;
  dib_ = 0;
  serial_ = 0;
  width_ = height_ = 0;
}
