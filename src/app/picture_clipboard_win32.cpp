#include "app/picture_clipboard_win32.h"

#include <cstring>
#include <vector>

#include "base/dib.h"

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

BlockHandle PictureFromClipboard(HWND window) {
  if (!OpenClipboard(window)) return 0;
  BlockHandle dib = 0;
  if (HGLOBAL packed = GetClipboardData(CF_DIB)) {
    const void* bytes = GlobalLock(packed);
    if (bytes) dib = DibFromPacked(bytes, GlobalSize(packed));
    if (bytes) GlobalUnlock(packed);
  }
  // A DIB we do not store as it is (bit fields, compression) comes through
  // GDI as a bitmap instead.
  if (!dib) dib = FromBitmap(static_cast<HBITMAP>(GetClipboardData(CF_BITMAP)));
  CloseClipboard();
  return dib;
}
