// PCX, our own reader: 1-bit (one plane), 4-bit (four planes of 1 bit or one
// plane of 4 bits, with the header's 16 colours), 8-bit (with the 256
// colours after the 0x0C marker at the end of the file) and 24-bit (three
// planes of 8 bits). The data is run-length coded: a byte with its top two
// bits set repeats the next byte (its low six bits) times; runs may cross
// from one line to the next. Other plane layouts, uncoded files and 8-bit
// files without their end palette are not read.
#include <algorithm>
#include <cstring>
#include <vector>

#include "pictures/format_readers.h"

namespace {

constexpr uint32_t kPcxHeaderSize = 128;
constexpr uint32_t kEndPaletteSize = 1 + 256 * 3;

struct PcxKind {
  uint8_t bitsPerPlane;
  uint8_t planes;
  uint16_t dibBits;
};
constexpr PcxKind kPcxKinds[] = {{1, 1, 1}, {1, 4, 4}, {4, 1, 4}, {8, 1, 8}, {8, 3, 24}};

// The 16 colours of files written without a palette (version 3).
constexpr uint8_t kDefaultColours[16][3] = {{0, 0, 0},     {0, 0, 170},    {0, 170, 0},    {0, 170, 170},
                                            {170, 0, 0},   {170, 0, 170},  {170, 85, 0},   {170, 170, 170},
                                            {85, 85, 85},  {85, 85, 255},  {85, 255, 85},  {85, 255, 255},
                                            {255, 85, 85}, {255, 85, 255}, {255, 255, 85}, {255, 255, 255}};

struct PcxLayout {
  uint8_t bitsPerPlane = 0;
  uint8_t planes = 0;
  uint32_t bytesPerLine = 0;  // per plane
  uint64_t dataEnd = 0;       // where the coded data stops: the end palette or the end of the file
};

uint16_t Le16(const uint8_t* p) { return static_cast<uint16_t>(p[0] | p[1] << 8); }

void SetColours(ImageHeader* header, const uint8_t* rgb, int entries) {
  for (int i = 0; i < entries; ++i, rgb += 3) header->colours[i] = RgbQuad{rgb[2], rgb[1], rgb[0], 0};
}

bool ReadLayout(ByteSource& file, ImageHeader* header, PcxLayout* layout) {
  uint8_t h[kPcxHeaderSize];
  FieldReader r(file);
  r.Bytes(h, sizeof h);
  uint8_t version = h[1];
  if (!r.ok() || h[0] != 0x0A || h[2] != 1 ||
      (version != 0 && version != 2 && version != 3 && version != 4 && version != 5))
    return false;
  layout->bitsPerPlane = h[3];
  layout->planes = h[65];
  layout->bytesPerLine = Le16(h + 66);
  const PcxKind* kind = std::find_if(std::begin(kPcxKinds), std::end(kPcxKinds), [&](const PcxKind& k) {
    return k.bitsPerPlane == layout->bitsPerPlane && k.planes == layout->planes;
  });
  if (kind == std::end(kPcxKinds)) return false;
  header->width = Le16(h + 8) - Le16(h + 4) + 1;
  header->height = Le16(h + 10) - Le16(h + 6) + 1;
  header->bitCount = kind->dibBits;
  if (uint64_t{layout->bytesPerLine} * 8 < uint64_t(std::max(header->width, 0)) * layout->bitsPerPlane) return false;
  layout->dataEnd = file.Size();

  const uint8_t* headerColours = h + 16;
  if (header->bitCount == 8) {
    uint8_t end[kEndPaletteSize];
    if (file.Size() < kPcxHeaderSize + kEndPaletteSize) return false;
    layout->dataEnd = file.Size() - kEndPaletteSize;
    r.Seek(layout->dataEnd);
    r.Bytes(end, sizeof end);
    if (!r.ok() || end[0] != 0x0C) return false;
    SetColours(header, end + 1, 256);
  } else if (header->bitCount == 4) {
    SetColours(header, version == 3 ? &kDefaultColours[0][0] : headerColours, 16);
  } else if (header->bitCount == 1) {
    // Many writers leave the header's colours empty for black and white.
    static const uint8_t kBlackAndWhite[6] = {0, 0, 0, 255, 255, 255};
    bool empty = version == 3 || std::memcmp(headerColours, headerColours + 3, 3) == 0;
    SetColours(header, empty ? kBlackAndWhite : headerColours, 2);
  }
  return ImageHeaderIsReadable(*header);
}

// Run-length decoding, one line at a time; a run left over at the end of a
// line goes on into the next.
class RunLengthDecoder {
 public:
  RunLengthDecoder(const uint8_t* data, const uint8_t* end) : p_(data), end_(end) {}
  // False when the data runs out first.
  bool Fill(uint8_t* out, size_t n) {
    size_t i = 0;
    while (i < n) {
      if (runLeft_ > 0) {
        size_t k = std::min(runLeft_, n - i);
        std::memset(out + i, runValue_, k);
        i += k;
        runLeft_ -= k;
        continue;
      }
      if (p_ >= end_) return false;
      uint8_t b = *p_++;
      if ((b & 0xC0) != 0xC0) {
        out[i++] = b;
        continue;
      }
      if (p_ >= end_) return false;
      runLeft_ = b & 0x3F;
      runValue_ = *p_++;
    }
    return true;
  }

 private:
  const uint8_t* p_;
  const uint8_t* end_;
  size_t runLeft_ = 0;
  uint8_t runValue_ = 0;
};

// One decoded line (all planes, one after another) into a Dib row.
void PutLine(const uint8_t* line, const PcxLayout& layout, int width, uint16_t dibBits, uint8_t* row) {
  const uint32_t stride = layout.bytesPerLine;
  if (layout.planes == 1) {  // the same packing as the Dib's
    uint64_t bits = uint64_t{static_cast<uint32_t>(width)} * dibBits;
    size_t bytes = static_cast<size_t>((bits + 7) / 8);
    std::memcpy(row, line, bytes);
    if (bits % 8) row[bytes - 1] &= static_cast<uint8_t>(0xFF << (8 - bits % 8));  // bits past the last pixel
  } else if (layout.planes == 4) {  // four planes of 1 bit: plane n gives bit n of the index
    for (int x = 0; x < width; ++x) {
      int index = 0;
      for (int plane = 0; plane < 4; ++plane) index |= (line[plane * stride + x / 8] >> (7 - x % 8) & 1) << plane;
      row[x / 2] |= static_cast<uint8_t>(x % 2 ? index : index << 4);
    }
  } else {  // red, green and blue planes
    for (int x = 0; x < width; ++x) {
      row[3 * x] = line[2 * stride + x];
      row[3 * x + 1] = line[stride + x];
      row[3 * x + 2] = line[x];
    }
  }
}

// Fills the Dib's table and rows; false when the data runs out first.
bool DecodeInto(BlockHandle dib, const uint8_t* data, const PcxLayout& layout, const ImageHeader& header) {
  BlockLock lock(dib);
  std::memcpy(DibColourTable(lock.bytes()), header.colours, DibColourTableEntries(header.bitCount) * sizeof(RgbQuad));
  uint8_t* bits = DibBits(lock.bytes());
  uint64_t stride = DibRowStride(header.width, header.bitCount);
  std::vector<uint8_t> line(size_t{layout.bytesPerLine} * layout.planes);
  RunLengthDecoder decoder(data + kPcxHeaderSize, data + layout.dataEnd);
  for (int32_t y = 0; y < header.height; ++y) {
    if (!decoder.Fill(line.data(), line.size())) return false;
    PutLine(line.data(), layout, header.width, header.bitCount,
            bits + stride * static_cast<uint64_t>(header.height - 1 - y));
  }
  return true;
}

}  // namespace

bool ReadPcxHeader(ByteSource& file, ImageHeader* header) {
  PcxLayout layout;
  return ReadLayout(file, header, &layout);
}

BlockHandle ReadPcxPicture(const uint8_t* data, size_t size, PictureDecode* /*decode: PCX has no profile, orientation or alpha*/) {
  MemorySource source(data, size);
  ImageHeader header;
  PcxLayout layout;
  if (!ReadLayout(source, &header, &layout) || layout.dataEnd < kPcxHeaderSize) return 0;
  // A run gives at most 63 bytes for 2, so a file with less than 1/32 of the
  // picture's data cannot hold it; no need to allocate the picture to find out.
  uint64_t decoded = uint64_t{layout.bytesPerLine} * layout.planes * static_cast<uint64_t>(header.height);
  if (decoded > (layout.dataEnd - kPcxHeaderSize) * 32) return 0;

  BlockHandle dib = DibCreate(header.width, header.height, header.bitCount);
  if (dib && !DecodeInto(dib, data, layout, header)) {
    GlobalBlockFree(dib);
    dib = 0;
  }
  return dib;
}
