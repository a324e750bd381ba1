#include "pictures/exif_orientation.h"

#include <cstring>

#include "base/dib.h"

namespace {

constexpr uint16_t kOrientationTag = 0x0112;
constexpr uint16_t kShortType = 3;
// A real first directory has a few dozen entries; the tag is always among them.
constexpr uint32_t kMaxEntries = 1000;

struct TiffReader {
  const uint8_t* data;
  size_t size;
  bool bigEndian;
  bool Has(uint64_t at, uint64_t n) const { return at <= size && n <= size - at; }
  uint16_t U16(size_t at) const {
    return bigEndian ? static_cast<uint16_t>(data[at] << 8 | data[at + 1])
                     : static_cast<uint16_t>(data[at + 1] << 8 | data[at]);
  }
  uint32_t U32(size_t at) const {
    return bigEndian ? static_cast<uint32_t>(U16(at)) << 16 | U16(at + 2)
                     : static_cast<uint32_t>(U16(at + 2)) << 16 | U16(at);
  }
};

}  // namespace

int ExifOrientation(const uint8_t* data, size_t size) {
  if (!data) return 1;
  if (size >= 6 && std::memcmp(data, "Exif\0\0", 6) == 0) {
    data += 6;
    size -= 6;
  }
  if (size < 8) return 1;
  TiffReader r{data, size, false};
  if (std::memcmp(data, "MM\0*", 4) == 0) r.bigEndian = true;
  else if (std::memcmp(data, "II*\0", 4) != 0) return 1;
  const uint32_t directory = r.U32(4);
  if (!r.Has(directory, 2)) return 1;
  const uint32_t entries = r.U16(directory);
  if (entries > kMaxEntries || !r.Has(directory + 2ull, entries * 12ull)) return 1;
  for (uint32_t i = 0; i < entries; ++i) {
    const size_t entry = directory + 2 + 12 * static_cast<size_t>(i);
    if (r.U16(entry) != kOrientationTag) continue;
    if (r.U16(entry + 2) != kShortType || r.U32(entry + 4) != 1) return 1;
    const int value = r.U16(entry + 8);  // a short sits in the first half of the value field
    return value >= 1 && value <= 8 ? value : 1;
  }
  return 1;
}

namespace {

// A pixel of any stored depth, as its index or its three bytes.
struct PixelRows {
  uint8_t* bits;
  uint64_t stride;
  int32_t height;
  uint16_t bitCount;
  uint8_t* Row(int32_t topDownY) const { return bits + stride * static_cast<uint64_t>(height - 1 - topDownY); }
};

uint32_t GetPixel(const PixelRows& p, int32_t x, int32_t y) {
  const uint8_t* row = p.Row(y);
  switch (p.bitCount) {
    case 1: return row[x / 8] >> (7 - x % 8) & 1;
    case 4: return x % 2 ? row[x / 2] & 0x0F : row[x / 2] >> 4;
    case 8: return row[x];
    default: {
      const uint8_t* q = row + 3 * static_cast<size_t>(x);
      return static_cast<uint32_t>(q[0]) | q[1] << 8 | q[2] << 16;
    }
  }
}

void PutPixel(const PixelRows& p, int32_t x, int32_t y, uint32_t v) {
  uint8_t* row = p.Row(y);
  switch (p.bitCount) {
    case 1: row[x / 8] |= static_cast<uint8_t>(v << (7 - x % 8)); break;
    case 4: row[x / 2] |= static_cast<uint8_t>(x % 2 ? v : v << 4); break;
    case 8: row[x] = static_cast<uint8_t>(v); break;
    default: {
      uint8_t* q = row + 3 * static_cast<size_t>(x);
      q[0] = static_cast<uint8_t>(v);
      q[1] = static_cast<uint8_t>(v >> 8);
      q[2] = static_cast<uint8_t>(v >> 16);
    }
  }
}

// Where the stored picture's pixel for the shown pixel (x, y) is, for a
// stored picture of w x h (top-down coordinates).
void StoredPosition(int orientation, int32_t x, int32_t y, int32_t w, int32_t h, int32_t* sx, int32_t* sy) {
  switch (orientation) {
    case 2: *sx = w - 1 - x, *sy = y; break;
    case 3: *sx = w - 1 - x, *sy = h - 1 - y; break;
    case 4: *sx = x, *sy = h - 1 - y; break;
    case 5: *sx = y, *sy = x; break;
    case 6: *sx = y, *sy = h - 1 - x; break;
    case 7: *sx = w - 1 - y, *sy = h - 1 - x; break;
    case 8: *sx = w - 1 - y, *sy = x; break;
    default: *sx = x, *sy = y; break;
  }
}

}  // namespace

BlockHandle DibOriented(BlockHandle dib, int orientation) {
  if (orientation <= 1 || orientation > 8 || !DibBlockIsValid(dib)) return dib;
  BitmapInfoHeader header;
  {
    BlockLock lock(dib);
    header = *lock.as<BitmapInfoHeader>();
  }
  const uint16_t bits = header.biBitCount;
  if ((bits != 1 && bits != 4 && bits != 8 && bits != 24) || header.biHeight < 0) return dib;
  const int32_t w = header.biWidth, h = header.biHeight;
  const bool swap = OrientationSwapsSides(orientation);
  const int32_t outW = swap ? h : w, outH = swap ? w : h;
  BlockHandle out = DibCreate(outW, outH, bits);
  if (!out) {
    GlobalBlockFree(dib);
    return 0;
  }
  {
    BlockLock from(dib), to(out);
    std::memcpy(DibColourTable(to.bytes()), DibColourTable(from.bytes()), DibColourTableEntries(bits) * sizeof(RgbQuad));
    const PixelRows source{DibBits(from.bytes()), DibRowStride(w, bits), h, bits};
    const PixelRows target{DibBits(to.bytes()), DibRowStride(outW, bits), outH, bits};
    for (int32_t y = 0; y < outH; ++y) {
      for (int32_t x = 0; x < outW; ++x) {
        int32_t sx, sy;
        StoredPosition(orientation, x, y, w, h, &sx, &sy);
        PutPixel(target, x, y, GetPixel(source, sx, sy));
      }
    }
  }
  GlobalBlockFree(dib);
  return out;
}
