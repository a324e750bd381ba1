#include "base/dib.h"

#include <cstring>

uint32_t DibColourTableEntries(uint32_t bitCount) {
  return bitCount >= 1 && bitCount <= 8 ? (1u << bitCount) : 0;
}

uint64_t DibRowStride(int64_t width, uint32_t bitCount) {
  if (width < 0) width = -width;
  return ((static_cast<uint64_t>(width) * bitCount + 31) / 32) * 4;
}

uint32_t DibBitsOffset(const BitmapInfoHeader& header) {
  return header.biSize + DibColourTableEntries(header.biBitCount) * sizeof(RgbQuad);
}

bool DibHeaderIsUsable(const BitmapInfoHeader& h) {
  switch (h.biBitCount) {
    case 1: case 4: case 8: case 16: case 24: case 32: break;
    default: return false;
  }
  return h.biSize >= sizeof(BitmapInfoHeader) && h.biSize <= 4096 && h.biCompression == kBiRgb &&
         h.biWidth > 0 && h.biHeight != 0 && h.biHeight != INT32_MIN;
}

uint64_t DibTotalSize(const BitmapInfoHeader& h) {
  if (!DibHeaderIsUsable(h)) return 0;
  uint64_t rows = static_cast<uint64_t>(h.biHeight < 0 ? -static_cast<int64_t>(h.biHeight) : h.biHeight);
  return DibBitsOffset(h) + DibRowStride(h.biWidth, h.biBitCount) * rows;
}

bool DibBlockIsValid(BlockHandle block) {
  uint32_t size = GlobalBlockSize(block);
  if (size < sizeof(BitmapInfoHeader)) return false;
  BlockLock lock(block);
  if (!lock) return false;
  BitmapInfoHeader h;
  std::memcpy(&h, lock.bytes(), sizeof h);
  uint64_t need = DibTotalSize(h);
  return need != 0 && need <= size;
}

BlockHandle DibCreate(int32_t width, int32_t height, uint16_t bitCount) {
  BitmapInfoHeader h{};
  h.biSize = sizeof h;
  h.biWidth = width;
  h.biHeight = height;
  h.biPlanes = 1;
  h.biBitCount = bitCount;
  h.biCompression = kBiRgb;
  uint64_t total = DibTotalSize(h);
  if (total == 0 || total > UINT32_MAX) return 0;
  h.biSizeImage = static_cast<uint32_t>(total - DibBitsOffset(h));
  BlockHandle block = GlobalBlockAlloc(static_cast<uint32_t>(total));
  if (!block) return 0;
  BlockLock lock(block);
  std::memcpy(lock.bytes(), &h, sizeof h);
  return block;
}

BlockHandle DibFromPacked(const void* data, uint64_t size) {
  const uint8_t* p = static_cast<const uint8_t*>(data);
  BitmapInfoHeader h{};
  if (!data || size < sizeof h) return 0;
  std::memcpy(&h, p, sizeof h);
  if (h.biSize < sizeof h || h.biSize > size || h.biCompression != kBiRgb || h.biPlanes != 1) return 0;
  const uint32_t full = DibColourTableEntries(h.biBitCount);
  const uint32_t colours = h.biClrUsed && h.biClrUsed < full ? h.biClrUsed : full;
  const uint64_t tableAt = h.biSize, bitsAt = tableAt + uint64_t(colours) * sizeof(RgbQuad);
  const int32_t rows = h.biHeight < 0 ? -h.biHeight : h.biHeight;
  if (h.biHeight == INT32_MIN || h.biWidth <= 0 || h.biWidth > 65536 || rows == 0 || rows > 65536 || bitsAt > size)
    return 0;
  const uint64_t bytes = DibRowStride(h.biWidth, h.biBitCount) * uint64_t(rows);
  if (bitsAt + bytes > size) return 0;
  BlockHandle dib = DibCreate(h.biWidth, h.biHeight, h.biBitCount);
  if (!dib) return 0;
  BlockLock lock(dib);
  if (!lock) return GlobalBlockFree(dib), 0;
  std::memcpy(lock.bytes() + sizeof h, p + tableAt, colours * sizeof(RgbQuad));
  std::memcpy(DibBits(lock.bytes()), p + bitsAt, bytes);
  auto* header = lock.as<BitmapInfoHeader>();
  header->biXPelsPerMeter = h.biXPelsPerMeter, header->biYPelsPerMeter = h.biYPelsPerMeter;
  return dib;
}
