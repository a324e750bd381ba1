// BMP: Windows headers of 40, 56, 108 and 124 bytes and the 12-byte OS/2 1.x
// header; 1/4/8-bit palette and 16/24/32-bit files, uncompressed, with bit
// fields, or run-length coded (8 bits RLE8, 4 bits RLE4). Embedded JPEG/PNG
// and the 64-byte OS/2 2.x header are not read. Uncompressed Windows files
// are decoded by stb_image; run-length coded files and OS/2 files (whose
// 3-byte colour table stb_image misreads) here, straight into the Dib.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "pictures/format_readers.h"

namespace {

constexpr uint32_t kFileHeaderSize = 14;
constexpr uint32_t kCoreHeaderSize = 12;
constexpr uint32_t kBiRle8 = 1;
constexpr uint32_t kBiRle4 = 2;
constexpr uint32_t kBiBitFields = 3;

struct BmpLayout {
  uint32_t pixelOffset = 0;
  uint16_t bitsPerPixel = 0;
  uint32_t paletteEntries = 0;
  uint32_t compression = kBiRgb;
  bool core = false;  // the OS/2 1.x header
};

bool ReadLayout(ByteSource& file, ImageHeader* header, BmpLayout* layout) {
  FieldReader r(file);
  if (r.U8() != 'B' || r.U8() != 'M') return false;
  r.Skip(8);  // file size, reserved
  layout->pixelOffset = r.U32le();
  uint32_t headerSize = r.U32le();
  layout->core = headerSize == kCoreHeaderSize;
  if (!layout->core && headerSize != 40 && headerSize != 56 && headerSize != 108 && headerSize != 124) return false;
  int32_t width, height;
  uint16_t planes, bits;
  uint32_t compression = kBiRgb;
  if (layout->core) {  // unsigned 16-bit sides, rows always bottom-up
    width = r.U16le();
    height = r.U16le();
    planes = r.U16le();
    bits = r.U16le();
  } else {
    width = static_cast<int32_t>(r.U32le());
    height = static_cast<int32_t>(r.U32le());
    planes = r.U16le();
    bits = r.U16le();
    compression = r.U32le();
  }
  if (!r.ok() || planes != 1 || height == 0 || height == INT32_MIN) return false;
  bool bitFields = compression == kBiBitFields && (bits == 16 || bits == 32);
  // Run-length coded rows are stored bottom-up only.
  bool runLengths = ((compression == kBiRle8 && bits == 8) || (compression == kBiRle4 && bits == 4)) && height > 0;
  if (compression != kBiRgb && !bitFields && !runLengths) return false;
  if (bits != 1 && bits != 4 && bits != 8 && bits != 16 && bits != 24 && bits != 32) return false;
  if (layout->core && (bits == 16 || bits == 32)) return false;
  layout->bitsPerPixel = bits;
  layout->compression = compression;
  header->width = width;
  header->height = std::abs(height);  // negative for rows stored top-down
  header->bitCount = bits <= 8 ? bits : 24;
  if (bits <= 8) {
    // Like the decoder, take the table to fill the room between the headers
    // and the pixels: entries of 4 bytes, of 3 after the OS/2 header.
    const uint32_t entrySize = layout->core ? 3 : 4;
    int64_t entries = (static_cast<int64_t>(layout->pixelOffset) - kFileHeaderSize - headerSize) / entrySize;
    if (entries < 1 || entries > 256) return false;
    layout->paletteEntries = static_cast<uint32_t>(entries);
    r.Seek(kFileHeaderSize + headerSize);
    for (uint32_t i = 0; i < layout->paletteEntries; ++i) {
      uint8_t bgrx[4];
      r.Bytes(bgrx, entrySize);
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

// A new Dib of the header's size and kind with the file's colour table.
BlockHandle NewDib(const ImageHeader& header) {
  BlockHandle dib = DibCreate(header.width, header.height, header.bitCount);
  if (dib && header.bitCount <= 8)
    std::memcpy(DibColourTable(BlockLock(dib).bytes()), header.colours,
                DibColourTableEntries(header.bitCount) * sizeof(RgbQuad));
  return dib;
}

// An OS/2 file's rows are stored as the Dib keeps them; the bits past each
// row's last pixel are cleared.
BlockHandle CopyRows(const uint8_t* rows, const ImageHeader& header) {
  BlockHandle dib = NewDib(header);
  if (!dib) return 0;
  BlockLock lock(dib);
  uint8_t* bits = DibBits(lock.bytes());
  const uint64_t stride = DibRowStride(header.width, header.bitCount);
  const uint64_t used = static_cast<uint64_t>(header.width) * header.bitCount;
  for (int32_t y = 0; y < header.height; ++y) {
    uint8_t* row = bits + stride * static_cast<uint64_t>(y);
    std::memcpy(row, rows + stride * static_cast<uint64_t>(y), static_cast<size_t>((used + 7) / 8));
    if (used % 8) row[used / 8] &= static_cast<uint8_t>(0xFF << (8 - used % 8));
  }
  return dib;
}

// Run-length coded pixels (RLE8 and RLE4), bottom row first. A count byte
// repeats the next byte's index (RLE4: its two nibbles in turn) that many
// times; after a zero, 0 ends the row, 1 the picture, 2 moves right and up
// by the next two bytes, and 3 to 255 give that many indexes as they are,
// padded to an even number of bytes. Runs past the row's end are cut there,
// moves past the picture's top end it, and pixels no code reaches keep
// index 0. False when the data ends before the picture does, or names an
// entry the table lacks.
class RunLengthRows {
 public:
  RunLengthRows(const uint8_t* data, const uint8_t* end, const ImageHeader& header, const BmpLayout& layout,
                uint8_t* bits)
      : p_(data),
        end_(end),
        width_(header.width),
        height_(header.height),
        four_(layout.compression == kBiRle4),
        entries_(layout.paletteEntries),
        bits_(bits),
        stride_(DibRowStride(header.width, header.bitCount)) {}

  bool Decode() {
    while (y_ < height_) {
      if (end_ - p_ < 2) return false;
      const uint8_t count = *p_++, value = *p_++;
      if (count > 0) {
        const uint8_t pair[2] = {four_ ? static_cast<uint8_t>(value >> 4) : value, static_cast<uint8_t>(value & 15)};
        for (uint32_t i = 0; i < count && x_ + i < width_; ++i)
          if (!Put(x_ + i, four_ ? pair[i % 2] : value)) return false;
        x_ = std::min<int64_t>(x_ + count, width_);
      } else if (value == 0) {  // end of the row
        x_ = 0;
        ++y_;
      } else if (value == 1) {  // end of the picture
        return true;
      } else if (value == 2) {  // a move
        if (end_ - p_ < 2) return false;
        x_ = std::min<int64_t>(x_ + p_[0], width_);
        y_ += p_[1];
        p_ += 2;
      } else {  // `value` indexes as they are, to an even number of bytes
        const size_t bytes = four_ ? (value + 1u) / 2 : value;
        if (static_cast<size_t>(end_ - p_) < bytes + bytes % 2) return false;
        for (uint32_t i = 0; i < value && x_ + i < width_; ++i)
          if (!Put(x_ + i, four_ ? static_cast<uint8_t>(i % 2 ? p_[i / 2] & 15 : p_[i / 2] >> 4) : p_[i]))
            return false;
        x_ = std::min<int64_t>(x_ + value, width_);
        p_ += bytes + bytes % 2;
      }
    }
    return true;  // every row reached: what follows is not needed
  }

 private:
  // Sets the pixel at (x, y_), which lies in the picture.
  bool Put(int64_t x, uint8_t index) {
    if (index >= entries_) return false;
    uint8_t* row = bits_ + stride_ * static_cast<uint64_t>(y_);
    if (four_) row[x / 2] = static_cast<uint8_t>(x % 2 ? (row[x / 2] & 0xF0) | index : (row[x / 2] & 0x0F) | index << 4);
    else row[x] = index;
    return true;
  }

  const uint8_t* p_;
  const uint8_t* const end_;
  const int64_t width_, height_;
  const bool four_;
  const uint32_t entries_;
  uint8_t* const bits_;
  const uint64_t stride_;
  int64_t x_ = 0, y_ = 0;
};

BlockHandle DecodeRunLengths(const uint8_t* data, size_t size, const ImageHeader& header, const BmpLayout& layout) {
  if (layout.pixelOffset > size) return 0;
  BlockHandle dib = NewDib(header);
  if (!dib) return 0;
  bool ok;
  {
    BlockLock lock(dib);
    ok = RunLengthRows(data + layout.pixelOffset, data + size, header, layout, DibBits(lock.bytes())).Decode();
  }
  if (!ok) {
    GlobalBlockFree(dib);
    return 0;
  }
  return dib;
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
  if (layout.compression == kBiRle8 || layout.compression == kBiRle4)
    return DecodeRunLengths(data, size, header, layout);
  // The decoder reads zeros past the end of a file cut short.
  uint64_t stride = DibRowStride(header.width, layout.bitsPerPixel);
  if (layout.pixelOffset > size || stride * static_cast<uint64_t>(header.height) > size - layout.pixelOffset) return 0;
  if (!IndexesAreInTable(data + layout.pixelOffset, stride, header, layout)) return 0;
  if (layout.core) return CopyRows(data + layout.pixelOffset, header);
  return DecodeWithStb(data, size, header, *decode);
}
