#include "render/primitives_win32.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "base/dib.h"

namespace {

// Where the source is set, the destination takes the selected brush;
// elsewhere it stays as it is.
constexpr DWORD kPaintBrushWhereSourceSet = 0xE20746;

// 0 and 1 stay, 2..16 become 16, 17..256 become 256.
int PaletteEntries(int count) {
  int entries = count < 17 ? count : 256;
  if (entries >= 2 && entries <= 16) entries = 16;
  return entries;
}

// The brush a dialog gives its buttons' background, or null.
HBRUSH ParentBackgroundBrush(const DRAWITEMSTRUCT* item) {
  HWND parent = GetParent(item->hwndItem);
  if (!parent) return nullptr;
  return reinterpret_cast<HBRUSH>(SendMessageA(parent, WM_CTLCOLORBTN, reinterpret_cast<WPARAM>(item->hDC),
                                               reinterpret_cast<LPARAM>(item->hwndItem)));
}

}  // namespace

int MakePalette(HDC dc, PaletteHolder* holder, const uint8_t* triplets, int count) {
  if (count > 256) return 1;
  const int entries = PaletteEntries(count < 0 ? 0 : count);
  const size_t size = offsetof(LOGPALETTE, palPalEntry) + (entries > 0 ? entries : 1) * sizeof(PALETTEENTRY);
  LOGPALETTE* copy = static_cast<LOGPALETTE*>(std::calloc(1, size));
  if (!copy) return 0;
  copy->palVersion = 0x300;
  copy->palNumEntries = static_cast<WORD>(entries);
  for (int i = 0; i < entries; ++i) {
    copy->palPalEntry[i].peRed = triplets[i * 3];
    copy->palPalEntry[i].peGreen = triplets[i * 3 + 1];
    copy->palPalEntry[i].peBlue = triplets[i * 3 + 2];
  }
  HPALETTE palette = CreatePalette(copy);
  if (!palette) {
    std::free(copy);
    return 0;
  }
  holder->palette = palette;
  holder->copy = copy;
  holder->previous = SelectPalette(dc, palette, FALSE);
  RealizePalette(dc);
  return 1;
}

void ReleasePalette(HDC dc, PaletteHolder* holder) {
  if (holder->palette && holder->previous) SelectPalette(dc, holder->previous, FALSE);
  if (holder->palette) DeleteObject(holder->palette);
  std::free(holder->copy);
  *holder = PaletteHolder{nullptr, nullptr, nullptr};
}

void DrawColourSwatchButton(const DRAWITEMSTRUCT* item, COLORREF colour) {
  HDC dc = item->hDC;
  const RECT& r = item->rcItem;
  const COLORREF base = (item->itemState & ODS_DISABLED) ? GetSysColor(COLOR_BTNFACE) : colour;
  HGDIOBJ oldPen = SelectObject(dc, GetStockObject(NULL_PEN));
  HGDIOBJ oldBrush = GetCurrentObject(dc, OBJ_BRUSH);
  // Without a pen, Rectangle leaves out the right and bottom edges: growing
  // it by one covers the whole item.
  if (HBRUSH background = ParentBackgroundBrush(item)) {
    SelectObject(dc, background);
    Rectangle(dc, r.left, r.top, r.right + 1, r.bottom + 1);
  }
  HBRUSH swatch = CreateSolidBrush(base);
  if (swatch) {
    SelectObject(dc, swatch);
    Rectangle(dc, r.left, r.top, r.right - 2, r.bottom - 2);
  }
  SelectObject(dc, oldBrush);
  SelectObject(dc, oldPen);
  if (swatch) DeleteObject(swatch);

  RECT edge = r;
  DrawEdge(dc, &edge, (item->itemState & ODS_SELECTED) ? EDGE_SUNKEN : EDGE_RAISED, BF_RECT | BF_SOFT);
  if (item->itemState & ODS_FOCUS) {
    RECT focus{r.left + 4, r.top + 3, r.right - 4, r.bottom - 4};
    DrawFocusRect(dc, &focus);
  }
}

void DrawBitmapButton(const DRAWITEMSTRUCT* item, HINSTANCE instance, LPCSTR bitmapName, int firstIndex,
                      int buttonIndex) {
  HDC dc = item->hDC;
  FillRect(dc, &item->rcItem, GetSysColorBrush(COLOR_BTNFACE));
  HBITMAP strip = LoadBitmapA(instance, bitmapName);
  if (!strip) return;
  BITMAP size;
  HDC memory = GetObjectA(strip, sizeof size, &size) ? CreateCompatibleDC(dc) : nullptr;
  if (!memory) {
    DeleteObject(strip);
    return;
  }
  HBRUSH shadow = CreateSolidBrush(GetSysColor(COLOR_BTNSHADOW));
  HGDIOBJ oldBrush = shadow ? SelectObject(dc, shadow) : nullptr;
  HGDIOBJ oldBitmap = SelectObject(memory, strip);

  const int side = size.bmHeight / 2;
  const int column = (buttonIndex - firstIndex) * side, maskTop = side + 1;
  const int x = item->rcItem.left + 1, y = item->rcItem.top + 1;
  // The mask is black where the image is: MERGEPAINT whitens that shape and
  // keeps the background, then SRCAND lays the image on the white.
  BitBlt(dc, x, y, side, side, memory, column, maskTop, MERGEPAINT);
  if (item->itemState & ODS_DISABLED) {
    // The inverted mask is set where the image is: paint the shadow brush there.
    PatBlt(memory, column, maskTop, side, side, DSTINVERT);
    BitBlt(dc, x, y, side, side, memory, column, maskTop, kPaintBrushWhereSourceSet);
  } else {
    BitBlt(dc, x, y, side, side, memory, column, 0, SRCAND);
  }

  SelectObject(memory, oldBitmap);
  DeleteDC(memory);
  DeleteObject(strip);
  if (oldBrush) SelectObject(dc, oldBrush);
  if (shadow) DeleteObject(shadow);
}

const void* ReadDib(BlockHandle dib, const BlockLock& lock, DibInfo* info) {
  if (!lock || !DibBlockIsValid(dib)) return nullptr;
  BitmapInfoHeader stored;
  std::memcpy(&stored, lock.bytes(), sizeof stored);
  std::memset(info, 0, sizeof *info);
  info->header.biSize = sizeof(BITMAPINFOHEADER);
  info->header.biWidth = stored.biWidth;
  info->header.biHeight = stored.biHeight;
  info->header.biPlanes = 1;
  info->header.biBitCount = stored.biBitCount;
  info->header.biCompression = BI_RGB;
  const uint32_t entries = DibColourTableEntries(stored.biBitCount);
  std::memcpy(info->colours, lock.bytes() + stored.biSize, entries * sizeof(RGBQUAD));
  return lock.bytes() + DibBitsOffset(stored);
}
