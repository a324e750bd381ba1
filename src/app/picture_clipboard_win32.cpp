#include "app/picture_clipboard_win32.h"

#include <cstdlib>
#include <cstring>
#include <new>
#include <vector>

#include "base/dib.h"
#include "pictures/picture_import.h"

namespace {

// A palette for the clipboard's CF_PALETTE, from a palette picture's table.
HPALETTE PaletteOf(const uint8_t* dib) {
  const auto& h = *reinterpret_cast<const BitmapInfoHeader*>(dib);
  const uint32_t count = DibColourTableEntries(h.biBitCount);
  if (!count) return nullptr;
  std::vector<uint8_t> bytes(sizeof(LOGPALETTE) + count * sizeof(PALETTEENTRY));
  auto* palette = reinterpret_cast<LOGPALETTE*>(bytes.data());
  palette->palVersion = 0x300;
  palette->palNumEntries = static_cast<WORD>(count);
  const RgbQuad* table = reinterpret_cast<const RgbQuad*>(dib + h.biSize);
  for (uint32_t i = 0; i < count; ++i)
    palette->palPalEntry[i] = {table[i].rgbRed, table[i].rgbGreen, table[i].rgbBlue, 0};
  return CreatePalette(palette);
}

// What GDI makes of the clipboard's bitmap, as a 24-bit Dib.
BlockHandle FromBitmap(HBITMAP bitmap) {
  BITMAP size;
  if (!bitmap || !GetObjectA(bitmap, sizeof size, &size)) return 0;
  BlockHandle dib = DibCreate(size.bmWidth, size.bmHeight, 24);
  if (!dib) return 0;
  BlockLock lock(dib);
  HDC screen = GetDC(nullptr);
  const int rows = GetDIBits(screen, bitmap, 0, static_cast<UINT>(size.bmHeight), DibBits(lock.bytes()),
                             lock.as<BITMAPINFO>(), DIB_RGB_COLORS);
  ReleaseDC(nullptr, screen);
  lock.as<BitmapInfoHeader>()->biSize = sizeof(BitmapInfoHeader);
  if (rows == size.bmHeight) return dib;
  GlobalBlockFree(dib);
  return 0;
}

// A BITMAPV5HEADER's 32-bit pixels with the alpha or the profile they
// carry; false for any other bitmap, which CF_DIB gives as well.
bool FromDibV5(const uint8_t* bytes, SIZE_T size, DecodedPixels* out) {
  if (size < sizeof(BITMAPV5HEADER)) return false;
  BITMAPV5HEADER h;
  std::memcpy(&h, bytes, sizeof h);
  const bool masks = h.bV5Compression == BI_BITFIELDS && h.bV5RedMask == 0x00FF0000 && h.bV5GreenMask == 0x0000FF00 &&
                     h.bV5BlueMask == 0x000000FF;
  const bool alpha = h.bV5AlphaMask == 0xFF000000u;
  const bool profile = h.bV5CSType == PROFILE_EMBEDDED && h.bV5ProfileSize > 0;
  if (h.bV5Size < sizeof h || h.bV5BitCount != 32 || h.bV5Width <= 0 || h.bV5Height == 0 || h.bV5Height == INT32_MIN ||
      (h.bV5Compression != BI_RGB && !masks) || (!alpha && !profile))
    return false;
  const uint64_t width = static_cast<uint64_t>(h.bV5Width), height = static_cast<uint64_t>(std::abs(h.bV5Height));
  if (width * height > kMaxDecodedPixels || h.bV5Size + width * height * 4 > size) return false;
  if (profile && (h.bV5ProfileData > size || h.bV5ProfileSize > size - h.bV5ProfileData)) return false;
  out->rgba.reset(new (std::nothrow) uint8_t[width * height * 4]);
  if (!out->rgba) return false;
  out->width = static_cast<int32_t>(width);
  out->height = static_cast<int32_t>(height);
  out->hasAlpha = alpha;
  if (profile) out->icc.assign(bytes + h.bV5ProfileData, bytes + h.bV5ProfileData + h.bV5ProfileSize);
  for (uint64_t y = 0; y < height; ++y) {
    const uint8_t* row = bytes + h.bV5Size + 4 * width * (h.bV5Height < 0 ? y : height - 1 - y);
    uint8_t* to = out->rgba.get() + 4 * width * y;
    for (uint64_t x = 0; x < width; ++x, row += 4, to += 4) {
      to[0] = row[2], to[1] = row[1], to[2] = row[0];
      to[3] = alpha ? row[3] : 255;
    }
  }
  return true;
}

}  // namespace

bool ClipboardHasPicture() { return IsClipboardFormatAvailable(CF_DIB) || IsClipboardFormatAvailable(CF_BITMAP); }

bool CopyPictureToClipboard(HWND window, BlockHandle dib) {
  const uint32_t size = GlobalBlockSize(dib);
  BlockLock lock(dib);
  if (!lock || !size || !OpenClipboard(window)) return false;
  bool done = false;
  if (EmptyClipboard()) {
    HGLOBAL copy = GlobalAlloc(GMEM_MOVEABLE, size);
    void* to = copy ? GlobalLock(copy) : nullptr;
    if (to) {
      std::memcpy(to, lock.bytes(), size);
      GlobalUnlock(copy);
      done = SetClipboardData(CF_DIB, copy) != nullptr;
    }
    if (!done && copy) GlobalFree(copy);
    if (done)
      if (HPALETTE palette = PaletteOf(lock.bytes()))
        if (!SetClipboardData(CF_PALETTE, palette)) DeleteObject(palette);
  }
  CloseClipboard();
  return done;
}

BlockHandle PictureFromClipboard(HWND window, Colour background) {
  if (!OpenClipboard(window)) return 0;
  ImportRequest request;
  request.background = background;
  BlockHandle dib = 0;
  if (HGLOBAL packed = IsClipboardFormatAvailable(CF_DIBV5) ? GetClipboardData(CF_DIBV5) : nullptr) {
    const auto* bytes = static_cast<const uint8_t*>(GlobalLock(packed));
    DecodedPixels pixels;
    if (bytes && FromDibV5(bytes, GlobalSize(packed), &pixels)) dib = ImportDecodedPixels(pixels, request).dib;
    if (bytes) GlobalUnlock(packed);
  }
  if (HGLOBAL packed = dib ? nullptr : GetClipboardData(CF_DIB)) {
    const void* bytes = GlobalLock(packed);
    if (bytes) dib = DibFromPacked(bytes, GlobalSize(packed));
    if (bytes) GlobalUnlock(packed);
  }
  // A DIB we do not store as it is (bit fields, compression) comes through
  // GDI as a bitmap instead.
  if (!dib) dib = FromBitmap(static_cast<HBITMAP>(GetClipboardData(CF_BITMAP)));
  CloseClipboard();
  return ImportPictureDib(dib, request);
}
