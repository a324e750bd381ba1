// Device-independent bitmaps held in one GlobalBlock: a BITMAPINFOHEADER, for
// 8 bits per pixel or fewer a colour table of exactly 2^bits entries (taken
// from the bit count, never from biClrUsed), then the pixel rows bottom-up.
#pragma once
#include <cstdint>

#include "base/global_block.h"

// The largest picture the program holds: no image file is read into more, and
// a calendar file holds no picture block larger (a stream claiming more is a
// damaged record). Real photographs are far below it.
constexpr uint32_t kMaxPictureBytes = 512u << 20;

#pragma pack(push, 1)
struct BitmapInfoHeader {
  uint32_t biSize;
  int32_t biWidth;
  int32_t biHeight;
  uint16_t biPlanes;
  uint16_t biBitCount;
  uint32_t biCompression;
  uint32_t biSizeImage;
  int32_t biXPelsPerMeter;
  int32_t biYPelsPerMeter;
  uint32_t biClrUsed;
  uint32_t biClrImportant;
};
struct RgbQuad {
  uint8_t rgbBlue;
  uint8_t rgbGreen;
  uint8_t rgbRed;
  uint8_t rgbReserved;
};
#pragma pack(pop)
static_assert(sizeof(BitmapInfoHeader) == 40, "BITMAPINFOHEADER is 40 bytes");
static_assert(sizeof(RgbQuad) == 4, "RGBQUAD is 4 bytes");

constexpr uint32_t kBiRgb = 0;

// Entries in the colour table for a bit count: 2^bits up to 8 bits, else 0.
uint32_t DibColourTableEntries(uint32_t bitCount);
// Bytes in one pixel row, padded to a multiple of four.
uint64_t DibRowStride(int64_t width, uint32_t bitCount);
// Offset of the pixel rows from the start of the block.
uint32_t DibBitsOffset(const BitmapInfoHeader& header);
// Header + colour table + rows; 0 when the header is not one this program
// handles (see DibHeaderIsUsable).
uint64_t DibTotalSize(const BitmapInfoHeader& header);

// True for uncompressed 1/4/8/16/24/32-bit headers with a positive width and
// a non-zero height, the only kind the program stores.
bool DibHeaderIsUsable(const BitmapInfoHeader& header);
// True when `block` holds a usable header and is large enough for its
// colour table and every pixel row.
bool DibBlockIsValid(BlockHandle block);

// A zero-filled bottom-up Dib, or 0 when the size is not usable or memory runs out.
BlockHandle DibCreate(int32_t width, int32_t height, uint16_t bitCount);

// A Dib of our layout from a packed DIB as other programs write it (the
// clipboard's CF_DIB): a BITMAPINFOHEADER or a larger header, a colour table
// of biClrUsed entries or the full 2^bits, the rows. Uncompressed RGB only;
// 0 for anything else or anything that does not fit in `size` bytes.
BlockHandle DibFromPacked(const void* data, uint64_t size);

inline RgbQuad* DibColourTable(void* dib) {
  return reinterpret_cast<RgbQuad*>(static_cast<uint8_t*>(dib) + static_cast<BitmapInfoHeader*>(dib)->biSize);
}
inline uint8_t* DibBits(void* dib) {
  return static_cast<uint8_t*>(dib) + DibBitsOffset(*static_cast<BitmapInfoHeader*>(dib));
}
