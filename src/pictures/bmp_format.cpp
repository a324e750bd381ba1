// BMP: Windows headers of 40, 56, 108 and 124 bytes, 1/4/8-bit palette and
// 16/24/32-bit files, uncompressed or with bit fields. Run-length coded
// files, embedded JPEG/PNG and the 12-byte OS/2 header (whose colour table
// stb_image misreads) are not read.
#include <cstdlib>

#include "pictures/image_format.h"

namespace {

constexpr uint32_t kFileHeaderSize = 14;
constexpr uint32_t kBiBitFields = 3;

struct BmpLayout {
  uint32_t pixelOffset = 0;
  uint16_t bitsPerPixel = 0;
  uint32_t paletteEntries = 0;
};

bool ReadLayout(ByteSource& file, ImageHeader* header, BmpLayout* layout) {
  FieldReader r(file);
  if (r.U8() != 'B' || r.U8() != 'M') return false;
  r.Skip(8);  // file size, reserved
  layout->pixelOffset = r.U32le();
  uint32_t headerSize = r.U32le();
  if (headerSize != 40 && headerSize != 56 && headerSize != 108 && headerSize != 124) return false;
  int32_t width = static_cast<int32_t>(r.U32le());
  int32_t height = static_cast<int32_t>(r.U32le());
  uint16_t planes = r.U16le();
  uint16_t bits = r.U16le();
  uint32_t compression = r.U32le();
  if (!r.ok() || planes != 1 || height == 0 || height == INT32_MIN) return false;
  bool bitFields = compression == kBiBitFields && (bits == 16 || bits == 32);
  if (compression != kBiRgb && !bitFields) return false;
  if (bits != 1 && bits != 4 && bits != 8 && bits != 16 && bits != 24 && bits != 32) return false;
  layout->bitsPerPixel = bits;
  header->width = width;
  header->height = std::abs(height);  // negative for rows stored top-down
  header->bitCount = bits <= 8 ? bits : 24;
  if (bits <= 8) {
    // Like the decoder, take the table to fill the room between the headers
    // and the pixels.
    int64_t entries = (static_cast<int64_t>(layout->pixelOffset) - kFileHeaderSize - headerSize) / 4;
    if (entries < 1 || entries > 256) return false;
    layout->paletteEntries = static_cast<uint32_t>(entries);
    r.Seek(kFileHeaderSize + headerSize);
    for (uint32_t i = 0; i < layout->paletteEntries; ++i) {
      uint8_t bgrx[4];
      r.Bytes(bgrx, 4);
      if (i < DibColourTableEntries(bits)) header->colours[i] = RgbQuad{bgrx[0], bgrx[1], bgrx[2], 0};
    }
    if (!r.ok()) return false;
  }
  return ImageHeaderIsReadable(*header);
}

// True when every pixel of a palette file names an entry its table has; the
// decoder would look the others up in memory it never filled.
bool IndexesAreInTable(const uint8_t* rows, uint64_t stride, const ImageHeader& header, const BmpLayout& layout) {
  uint32_t bits = layout.bitsPerPixel;
  if (layout.paletteEntries >= DibColourTableEntries(bits)) return true;
  for (int32_t y = 0; y < header.height; ++y) {
    const uint8_t* row = rows + stride * static_cast<uint64_t>(y);
    for (int32_t x = 0; x < header.width; ++x) {
      uint64_t bit = static_cast<uint64_t>(x) * bits;
      uint32_t index = (row[bit / 8] >> (8 - bits - bit % 8)) & ((1u << bits) - 1);
      if (index >= layout.paletteEntries) return false;
    }
  }
  return true;
}

}  // namespace

bool ReadBmpHeader(ByteSource& file, ImageHeader* header) {
  BmpLayout layout;
  return ReadLayout(file, header, &layout);
}

BlockHandle ReadBmpPicture(const uint8_t* data, size_t size, PictureDecode* decode) {
  MemorySource source(data, size);
  ImageHeader header;
  BmpLayout layout;
  if (!ReadLayout(source, &header, &layout)) return 0;
  // The decoder reads zeros past the end of a file cut short.
  uint64_t stride = DibRowStride(header.width, layout.bitsPerPixel);
  if (layout.pixelOffset > size || stride * static_cast<uint64_t>(header.height) > size - layout.pixelOffset) return 0;
  if (!IndexesAreInTable(data + layout.pixelOffset, stride, header, layout)) return 0;
  return DecodeWithStb(data, size, header, *decode);
}
